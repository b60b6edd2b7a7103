// Joins the browser's events to the parts: the button and the menu entry capture the tab, the
// program may ask for the tab that the user sees.

import {showMark} from './badge.js';
import {Host, HostMissing} from './host.js';
import {captureRequest} from './request.js';
import {activeTab, capturedTab, pictures} from './tab.js';

const menuEntry = 'capture';

/** Browsers on Linux pass on no longer address, and say nothing about it. */
const longestSchemeAddress = 131_071;

/** What the page that tells about the missing host is to open; given out once. */
let requestForHint = '';

const host = new Host(async what => {
  const tab = await activeTab();
  if (!tab) throw new Error('The browser shows no page.');
  return what === 'page' ? capturedTab(tab) : {address: tab.url};
});

async function capture(tab) {
  await showMark(tab.id, 'working');
  try {
    const outcome = await handOver(tab, captureRequest(await capturedTab(tab)));
    await showMark(tab.id, outcome.mark, outcome.reason);
  } catch (error) {
    await showMark(tab.id, 'failed', error.message);
  }
}

async function handOver(tab, request) {
  try {
    await host.sendRequest(request);
    return {mark: 'done'};
  } catch (error) {
    if (!(error instanceof HostMissing)) throw error;
    return handOverByScheme(tab);
  }
}

/**
 * Without the host a small page goes by the address scheme; the user is told how to install it. The
 * page that tells it opens the address: a browser that knows no program for it may show an error in
 * its place, and no browser says what has become of it.
 */
async function handOverByScheme(tab) {
  const request = captureRequest(await capturedTab(tab, pictures.linked));
  const fits = request.length <= longestSchemeAddress;
  requestForHint = fits ? request : '';
  const hint = chrome.runtime.getURL(`pages/install.html#${fits ? 'sent' : 'too-large'}`);
  await chrome.tabs.create({url: hint, index: tab.index + 1, openerTabId: tab.id});
  const reason = 'Corvalis is not connected to this browser: run "corvalis integrate".';
  if (!fits) throw new Error(reason);
  return {mark: 'unsure', reason};
}

chrome.runtime.onMessage.addListener((question, sender, answer) => {
  if (question !== 'request for the hint') return;
  answer(requestForHint);
  requestForHint = '';
});

function addMenuEntry() {
  chrome.contextMenus.removeAll(() => chrome.contextMenus.create({
    id: menuEntry,
    title: 'Capture this page with Corvalis',
    contexts: ['page', 'frame', 'selection', 'link', 'image'],
  }));
}

chrome.runtime.onInstalled.addListener(addMenuEntry);
chrome.runtime.onStartup.addListener(() => host.connectInPassing());
chrome.action.onClicked.addListener(capture);
chrome.contextMenus.onClicked.addListener((info, tab) => {
  if (info.menuItemId === menuEntry && tab) capture(tab);
});
chrome.tabs.onActivated.addListener(() => host.connectInPassing());
chrome.windows.onFocusChanged.addListener(window => {
  if (window !== chrome.windows.WINDOW_ID_NONE) host.tellFocused();
});
host.connectInPassing();

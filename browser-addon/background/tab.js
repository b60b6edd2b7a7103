// Reads a tab: runs the content scripts in all its frames and puts their pieces together.

import {assembled} from './assemble.js';
import {isWebAddress} from './request.js';
import {joinedStyles} from './styles.js';

const contentScripts = ['content/styles.js', 'content/attributes.js', 'content/pictures.js',
  'content/markup.js', 'content/capture.js'];

/** Whether what only this browser may be able to load goes along. */
export const pictures = {embedded: ['content/embed.js'], linked: []};

/** The tab that the user sees; with the program's window in front, the one last seen. */
export async function activeTab() {
  const [tab] = await chrome.tabs.query({active: true, lastFocusedWindow: true});
  return tab;
}

/** The page, or an error whose message is for the user. */
export async function capturedTab(tab, forPictures = pictures.embedded) {
  if (!isWebAddress(tab?.url)) throw new Error('Corvalis captures web pages only.');
  let results;
  try {
    results = await chrome.scripting.executeScript({
      target: {tabId: tab.id, allFrames: true},
      files: [...forPictures, ...contentScripts],
      // As it is now: a frame whose server does not answer would be waited for without end.
      injectImmediately: true,
    });
  } catch (refusal) {
    throw new Error(`The browser does not let this page be captured: ${refusal.message}`);
  }
  const pieces = results.map(result => result.result).filter(piece => piece);
  await Promise.all(pieces.map(async piece => { piece.styles = await joinedStyles(piece.sheets); }));
  const page = assembled(pieces);
  if (!page) throw new Error('This page could not be read.');
  return page;
}

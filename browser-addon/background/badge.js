// The mark on the toolbar button: what became of the last capture of a tab.

const marks = {
  working: {text: '…', colour: '#5a6b7b'},
  done: {text: '✓', colour: '#2e7d32'},
  unsure: {text: '?', colour: '#b26a00'},
  failed: {text: '!', colour: '#c62828'},
};

const ordinaryTitle = 'Capture this page with Corvalis';

/** `reason` is shown while the pointer is over the button. The tab may be gone by now. */
export async function showMark(tabId, name, reason = ordinaryTitle) {
  const {text, colour} = marks[name];
  try {
    await chrome.action.setBadgeBackgroundColor({tabId, color: colour});
    await chrome.action.setBadgeText({tabId, text});
    await chrome.action.setTitle({tabId, title: reason});
  } catch (gone) {
    console.debug('Corvalis:', gone.message);
  }
}

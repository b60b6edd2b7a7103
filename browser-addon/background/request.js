// The capture request and its pieces: pure functions on text.

const frameMarker = 'iframe::';

/** Half a surrogate pair has no encoding; the replacement character stands for it. */
function wellFormed(text) {
  return text.replace(/[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g, '\uFFFD');
}

export function encoded(text) {
  return btoa(encodeURI(wellFormed(text)));
}

/** Documents of frames in document order; none (null) where one could not be read. */
export function frameList(documents) {
  return documents.map(text => frameMarker + (text === null ? '' : encoded(text))).join('');
}

/** The one line of text that the program takes. The page is what assemble.js makes. */
export function captureRequest(page) {
  const data = encoded(page.document) + 'corvxstyles::' + encoded(page.styles) +
      'iframes::' + page.frames;
  return schemeAddress(page.address) + 'corvxdata::' + encodeURIComponent(data);
}

/** Only web pages can be captured. */
export function isWebAddress(address) {
  return /^https?:\/\//.test(address ?? '');
}

function schemeAddress(address) {
  return address.replace(/^https:/, 'corvxurls:').replace(/^http:/, 'corvxurl:');
}

/** A browser passes messages of at most 64 MiB on; pieces are far below, in UTF-8 too. */
export function chunks(text, size = 8 * 1024 * 1024) {
  const total = Math.max(1, Math.ceil(text.length / size));
  return Array.from({length: total}, (_, seq) => ({
    seq,
    total,
    text: text.slice(seq * size, (seq + 1) * size),
  }));
}

// The last of the content scripts: its value is the piece of the page that this frame holds (a
// promise of it).

(async () => {
  /** The index of each window among its parent's, from the top down; none at the top itself. */
  function placeAmongFrames() {
    const path = [];
    for (let view = window; view !== view.parent; view = view.parent) {
      let index = 0;
      while (index < view.parent.length && view.parent[index] !== view) ++index;
      path.unshift(index);
    }
    return path;
  }

  // The program shows every page in standards mode. These are the rules that the HTML Standard
  // (15, Rendering) gives for the other one; in a layer, so that each of the page's own wins.
  const oldPageRules = `@layer { table { font-weight: initial; font-style: initial; font-variant: initial;
    font-size: initial; line-height: initial; white-space: initial; text-align: initial }
    input:not([type=image i]) { box-sizing: border-box } form { margin-block-end: 1em } }`;
  const addedSheets = document.compatMode === 'BackCompat' ? [{text: oldPageRules}] : [];

  // A picture or a text alone has no markup worth sending that a fetch would not bring.
  const root = document.documentElement;
  if (!root || root.localName !== 'html') return null;
  corvalis.embedded = await corvalis.embedding ?? (address => address);
  // The next capture of this document may do without.
  delete corvalis.embedding;
  return {
    path: placeAmongFrames(),
    address: location.href,
    base: document.baseURI,
    doctype: document.compatMode === 'CSS1Compat' ? '<!DOCTYPE html>\n' : '',
    parts: corvalis.markupParts(root, window),
    sheets: [...corvalis.sheetsOf(document), ...addedSheets],
  };
})();

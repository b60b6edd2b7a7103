// The style sheets of a document or shadow root as one text. The content scripts run one after the
// other in a world of their own, and share this object.

globalThis.corvalis ??= {};

(() => {
  /** Addresses in rules are relative to their sheet; the text goes to another place. */
  function withAbsoluteAddresses(text, base) {
    return text.replace(/url\("((?:[^"\\]|\\.)*)"\)/g, (whole, address) => {
      if (/^(data:|#|blob:)/i.test(address)) return whole;
      try {
        return `url("${corvalis.embedded(new URL(address.replace(/\\(.)/g, '$1'), base).href)}")`;
      } catch (noAddress) {
        return whole;
      }
    });
  }

  /** Of a style attribute, which the page has in whatever spelling. */
  corvalis.styleText = element => withAbsoluteAddresses(element.style.cssText, document.baseURI);

  /** Within a style element the text must not end the element. */
  const harmless = text => text.replace(/<\/(style)/gi, '<\\/$1');

  function inMedia(media, text) {
    return media && media.mediaText ? `@media ${media.mediaText} { ${text} }` : text;
  }

  function importedText(rule) {
    let text = rule.styleSheet ? sheetText(rule.styleSheet) : undefined;
    if (text === undefined) return `@import url("${rule.href}") ${rule.media.mediaText};`;
    if (rule.layerName !== null && rule.layerName !== undefined)
      text = `@layer ${rule.layerName} { ${text} }`;
    if (rule.supportsText) text = `@supports (${rule.supportsText}) { ${text} }`;
    return inMedia(rule.media, text);
  }

  /** Undefined when the browser does not let the sheet be read (another origin). */
  function sheetText(sheet) {
    let rules;
    try {
      rules = [...sheet.cssRules];
    } catch (anotherOrigin) {
      return undefined;
    }
    const base = sheet.href ?? document.baseURI;
    return rules.map(rule => (rule instanceof CSSImportRule
      ? importedText(rule)
      : withAbsoluteAddresses(rule.cssText, base))).join('\n');
  }

  /**
   * The sheets of the root's elements, then the adopted ones: a text each, or the address of one
   * that only the background can read.
   */
  corvalis.sheetsOf = root => [...root.styleSheets, ...(root.adoptedStyleSheets ?? [])]
    .filter(sheet => !sheet.disabled)
    .map(sheet => {
      const text = sheetText(sheet);
      return text === undefined
        ? {address: sheet.href, media: sheet.media.mediaText}
        : {text: harmless(inMedia(sheet.media, text))};
    });

  /** Of the sheets that can be read here. */
  corvalis.stylesOf = root => corvalis.sheetsOf(root).map(sheet => sheet.text ?? '').join('\n');

  /** Whether the sheet of a link element is in that text, so that the element is not needed. */
  corvalis.isReadable = sheet => sheetText(sheet) !== undefined;
})();

(() => {
  const viewportUnits = ['vh', 'vmin', 'vmax', 'vw', 'vb', 'vi'];

  corvalisPage.viewport = () => ({ width: innerWidth, height: innerHeight });

  corvalisPage.mediaMatches = (conditions) => conditions.map((condition) => matchMedia(condition).matches);

  // The inline styles in viewport units and the media attributes, for the caller to settle.
  const inlineElements = () => {
    const found = [];
    const selector = viewportUnits.map((unit) => `[style*="${unit}" i]`).join();
    for (const root of corvalisPage.roots(document)) found.push(...root.querySelectorAll(selector));
    return found;
  };

  const mediaElements = () => {
    const selector = 'style[media], link[media], source[media]';
    return corvalisPage.roots(document).flatMap((root) => [...root.querySelectorAll(selector)]);
  };

  let inline = [];
  let media = [];

  corvalisPage.inlineStyles = () => {
    inline = inlineElements();
    media = mediaElements();
    return {
      styles: inline.map((element) => element.style.cssText),
      media: media.map((element) => element.getAttribute('media')),
    };
  };

  // Texts in the order of `inlineStyles`; null leaves an element as it is.
  corvalisPage.setInlineStyles = (styles, medias) => {
    styles.forEach((text, index) => {
      if (text === null) return;
      const element = inline[index];
      const old = element.style.cssText;
      const written = element.getAttribute('style');
      element.style.cssText = text;
      corvalisPage.onRestore(() => {
        element.style.cssText = old;
        if (element.getAttribute('style') !== written) element.setAttribute('style', written);
      });
    });
    medias.forEach((text, index) => {
      if (text !== null) corvalisPage.overrideAttribute(media[index], 'media', text);
    });
    return true;
  };

  const inPixels = (value) =>
    value.replace(/([\d.]+)%/g, (whole, number) => `${(number * innerHeight) / 100}px`);

  const isPercentage = (element, name) => String(element.computedStyleMap().get(name)).includes('%');

  const hasShareOfHeight = (element) => ['height', 'min-height'].some((name) => isPercentage(element, name));

  // Percentages of the root's height, and those of quirks mode whose line of boxes leads to it, are
  // shares of the viewport, on paper of the paper. Without such shares a quirks root is left alone: a
  // document that is lower than the viewport would be as high as that.
  const freezeRoot = () => {
    const root = document.documentElement;
    if (document.compatMode === 'BackCompat' && [...corvalisPage.elements(document)].some(hasShareOfHeight)) {
      corvalisPage.override(root, { height: `${innerHeight}px` });
    }
    for (const name of ['height', 'min-height', 'max-height']) {
      if (!isPercentage(root, name)) continue;
      corvalisPage.override(root, { [name]: inPixels(String(root.computedStyleMap().get(name))) });
    }
  };

  // What is placed by the viewport's height, without a positioned element around it: the engine names
  // the body, or nothing, as the parent of its offsets.
  corvalisPage.freezePlaced = () => {
    for (const element of corvalisPage.elements(document)) {
      const style = getComputedStyle(element);
      if (corvalisPage.atEnd.has(element)) continue;
      if (style.position !== 'absolute' || (element.offsetParent ?? document.body) !== document.body) continue;
      if (document.body && getComputedStyle(document.body).position !== 'static') continue;
      const byBottom = String(element.computedStyleMap().get('bottom')) !== 'auto';
      if (byBottom || ['top', 'height', 'min-height'].some((name) => isPercentage(element, name))) {
        corvalisPage.pin(element, 0);
      }
    }
  };

  // Where the root's direction is right to left, the engine moves scaled print sideways by what the
  // scale adds or takes, off the paper. The root becomes left to right; the body keeps its direction,
  // which what is in it inherits, and its place.
  const keepDirection = () => {
    const { documentElement: root, body } = document;
    if (!body || !(body instanceof HTMLBodyElement)) return;
    const isRightToLeft = (element) => getComputedStyle(element).direction === 'rtl';
    if (!isRightToLeft(root) && !isRightToLeft(body)) return;
    const left = body.getBoundingClientRect().left + scrollX;
    corvalisPage.override(body, { 'margin-left': `${left}px`, direction: getComputedStyle(body).direction });
    corvalisPage.override(root, { direction: 'ltr' });
  };

  // An identifier that no element has raises the weight of our rules above the page's.
  const heavy = ':not(#corvalis-a#corvalis-b#corvalis-c)';

  // Colours as on the screen. On one tall page nothing may break or be put on a page of its own.
  corvalisPage.addPrintRules = (pages, layoutWidth) => {
    const rules = [`*${heavy} { print-color-adjust: exact !important; }`];
    if (pages === 'one') {
      rules.push(`*${heavy}, *${heavy}::before, *${heavy}::after {
        break-before: auto !important; break-after: auto !important; break-inside: auto !important;
        page: auto !important; }`);
    }
    // Content that overflows to the right makes the paper wider, not the layout.
    if (layoutWidth) {
      rules.push(`html${heavy} { width: ${layoutWidth}px !important; max-width: none !important; }`);
    }
    corvalisPage.freezePlaced();
    freezeRoot();
    keepDirection();
    corvalisPage.addSheet(rules.join('\n'));
    return true;
  };
})();

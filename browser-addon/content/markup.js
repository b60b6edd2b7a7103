// Writes a document down as markup that shows with scripts off what the user sees now: the value of
// fields, the picture of canvases, shadow trees as declarative ones.

(() => {
  const emptyElements = new Set(['area', 'base', 'br', 'col', 'embed', 'hr', 'img', 'input', 'link',
    'meta', 'param', 'source', 'track', 'wbr']);
  /** Never written: they run, or what they say is in the styles. */
  const leftOut = new Set(['script', 'style', 'noscript', 'noframes', 'noembed', 'template']);
  const html = 'http://www.w3.org/1999/xhtml';

  const escapedText = text =>
    text.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;').replace(/\u00A0/g, '&nbsp;');
  /** With "<" escaped too, nothing in an attribute looks like an element to a search in the text. */
  const escapedAttribute = text => escapedText(text).replace(/"/g, '&quot;');

  function attributeText(attributes) {
    return [...attributes].map(([name, value]) => ` ${name}="${escapedAttribute(value)}"`).join('');
  }

  /** Closed ones as well: Chromium has a function for add-ons, Firefox a property. */
  function shadowRootOf(element) {
    try {
      return element.shadowRoot ?? element.openOrClosedShadowRoot ??
          globalThis.chrome?.dom?.openOrClosedShadowRoot?.(element);
    } catch (noRoot) {
      return null;
    }
  }

  class Writer {
    parts = [];
    #text = [];

    constructor(window) {
      this.window = window;
    }

    finish() {
      this.parts.push(this.#text.join(''));
      return this.parts;
    }

    #write(text) {
      this.#text.push(text);
    }

    element(element) {
      const name = element.localName;
      const isHtml = element.namespaceURI === html;
      if (leftOut.has(name) || isHtml && this.#special(element, name)) return;
      this.#write(`<${name}${attributeText(corvalis.attributesOf(element))}>`);
      if (isHtml && emptyElements.has(name)) return;
      this.#shadowTree(element);
      this.#content(element, name);
      this.#write(`</${name}>`);
    }

    #content(element, name) {
      if (name === 'textarea') return this.#write('\n' + escapedText(element.value));
      // The parser drops a line break that directly follows the tag.
      if (name === 'pre' && element.textContent.startsWith('\n')) this.#write('\n');
      this.#children(element);
    }

    #children(parent) {
      for (const child of parent.childNodes) {
        if (child.nodeType === Node.ELEMENT_NODE) this.element(child);
        if (child.nodeType === Node.TEXT_NODE) this.#write(escapedText(child.data));
      }
    }

    /** Whether the element has been written, or left out, in a way of its own. */
    #special(element, name) {
      if (name === 'iframe') return this.#frame(element);
      if (name === 'canvas') return this.#canvas(element);
      if (name === 'link') return this.#isSettledLink(element);
      // A policy or a move to another page is the browser's business and done with.
      if (name === 'meta') return /^(content-security-policy|refresh)$/i.test(element.httpEquiv);
      return false;
    }

    #isSettledLink(link) {
      if (/\b(preload|prefetch|modulepreload|preconnect|dns-prefetch)\b/i.test(link.rel)) return true;
      return link.sheet !== null && link.sheet !== undefined && corvalis.isReadable(link.sheet);
    }

    #canvas(canvas) {
      const address = corvalis.canvasAddress(canvas);
      if (!address) return false;
      const attributes = corvalis.attributesOf(canvas);
      attributes.delete('width');
      attributes.delete('height');
      attributes.set('src', address);
      attributes.set('style', [attributes.get('style'), corvalis.boxStyle(canvas)].filter(text => text).join('; '));
      this.#write(`<img${attributeText(attributes)}>`);
      return true;
    }

    /**
     * The element in two forms: to be filled with its document, and to load its source again. In the
     * first no attribute may look like a source to a search in the text.
     */
    #frame(frame) {
      const attributes = corvalis.attributesOf(frame);
      const place = [...Array(this.window.length).keys()]
        .find(index => this.window[index] === frame.contentWindow);
      const bare = new Map([...attributes].filter(([name]) => !/(src|srcdoc|loading|sandbox)$/.test(name)));
      const source = attributes.get('src') ? new Map(attributes).set('src', frame.src) : attributes;
      this.parts.push(this.#text.join(''), {
        frame: place ?? -1,
        open: '<iframe' + attributeText(bare).replace(/src=/g, 'src&#61;'),
        close: '</iframe>',
        withSource: `<iframe${attributeText(source)}></iframe>`,
      });
      this.#text = [];
      return true;
    }

    #shadowTree(host) {
      const root = shadowRootOf(host);
      if (!root) return;
      this.#write(`<template shadowrootmode="${root.mode}">`);
      // As a link: the program takes style elements out of a page.
      const styles = corvalis.stylesOf(root);
      if (styles) {
        const address = 'data:text/css;charset=utf-8,' + encodeURIComponent(styles);
        this.#write(`<link rel="stylesheet" href="${address}">`);
      }
      this.#children(root);
      this.#write('</template>');
    }
  }

  corvalis.markupParts = (root, window) => {
    const writer = new Writer(window);
    writer.element(root);
    return writer.finish();
  };
})();

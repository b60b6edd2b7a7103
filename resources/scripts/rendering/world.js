// What all page scripts share. They live in a world of their own: the page sees none of their names and
// cannot change the built-in functions under them. With the page's scripts off no timer, listener or
// promise callback runs here either, so everything returns at once and the caller asks again.

globalThis.corvalisPage = { ready: true };

(() => {
  const changes = [];

  // The documents of this page that can be reached: its own and those of frames of the same origin.
  corvalisPage.documents = () => {
    const found = [];
    const visit = (inner, depth) => {
      found.push(inner);
      if (depth >= 5) return;
      for (const frame of inner.querySelectorAll('iframe, frame')) {
        try {
          if (frame.contentDocument?.documentElement) visit(frame.contentDocument, depth + 1);
        } catch {
          // A frame of another origin.
        }
      }
    };
    visit(document, 0);
    return found;
  };

  // The document and every open shadow tree in it.
  corvalisPage.roots = (start) => {
    const found = [start];
    for (let index = 0; index < found.length; index++) {
      for (const element of found[index].querySelectorAll('*')) {
        if (element.shadowRoot) found.push(element.shadowRoot);
      }
    }
    return found;
  };

  corvalisPage.elements = function* (start) {
    for (const root of corvalisPage.roots(start)) yield* root.querySelectorAll('*');
  };

  // Sets inline styles that win over the page's own, to be undone by `restore`.
  corvalisPage.override = (element, properties) => {
    const hadAttribute = element.hasAttribute('style');
    for (const [name, value] of Object.entries(properties)) {
      const old = element.style.getPropertyValue(name);
      const priority = element.style.getPropertyPriority(name);
      element.style.setProperty(name, value, 'important');
      changes.push(() => {
        if (old) element.style.setProperty(name, old, priority);
        else element.style.removeProperty(name);
        if (!hadAttribute && element.getAttribute('style') === '') element.removeAttribute('style');
      });
    }
  };

  corvalisPage.overrideAttribute = (element, name, value) => {
    const old = element.getAttribute(name);
    element.setAttribute(name, value);
    changes.push(() => element.setAttribute(name, old));
  };

  // Rules of our own, after all of the page's. A constructed sheet is not subject to the page's content
  // security policy.
  corvalisPage.addSheet = (text) => {
    const sheet = new CSSStyleSheet();
    sheet.replaceSync(text);
    document.adoptedStyleSheets = [...document.adoptedStyleSheets, sheet];
    changes.push(() => {
      document.adoptedStyleSheets = document.adoptedStyleSheets.filter((other) => other !== sheet);
    });
  };

  corvalisPage.onRestore = (undo) => changes.push(undo);

  corvalisPage.jumpTo = (x, y) => window.scrollTo({ left: x, top: y, behavior: 'instant' });

  // Takes back every change, the last one first.
  corvalisPage.restore = () => {
    while (changes.length > 0) {
      try {
        changes.pop()();
      } catch {
        // The element is gone.
      }
    }
    return true;
  };
})();

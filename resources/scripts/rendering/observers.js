// Runs in each new document before the page's own scripts and in their world, where it leaves no name: it
// answers our other scripts whether the page has made anything that waits for a place to be seen.
(() => {
  const Native = globalThis.IntersectionObserver;
  const { construct } = Reflect;
  let made = false;
  const noticed = new Proxy(Native, {
    construct(target, values, newTarget) {
      made = true;
      return construct(target, values, newTarget);
    },
  });
  Native.prototype.constructor = noticed;
  globalThis.IntersectionObserver = noticed;
  // A document that has lost this listener counts as one with observers.
  addEventListener('corvalisasksforobservers', (event) => {
    if (!made) event.preventDefault();
  });
})();

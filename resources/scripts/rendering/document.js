(() => {
  // Beyond this the engine's own layout is exhausted to the right; nothing of a page is meant to be seen.
  const widest = 16384;

  const viewportElement = () => document.scrollingElement ?? document.documentElement;

  // Overflow of the root, or of the body where the root has none, is the viewport's.
  const hidesOverflowRight = () => {
    const hiding = ['hidden', 'clip'];
    const root = getComputedStyle(document.documentElement);
    if (root.overflowX !== 'visible') return hiding.includes(root.overflowX);
    return document.body !== null && hiding.includes(getComputedStyle(document.body).overflowX);
  };

  const bottomMargin = (element) => parseFloat(getComputedStyle(element).marginBottom) || 0;

  // How far down the boxes of a document reach that is lower than the viewport. In quirks mode root and
  // body fill the viewport, so only what is in them counts there.
  const lowHeight = () => {
    const quirks = document.compatMode === 'BackCompat';
    const filled = quirks ? [document.documentElement, document.body] : [];
    let bottom = 0;
    for (const element of corvalisPage.elements(document)) {
      if (filled.includes(element)) continue;
      const box = element.getBoundingClientRect();
      if (box.width === 0 || box.height === 0 || box.right + scrollX <= 0) continue;
      if (!element.checkVisibility({ opacityProperty: true, visibilityProperty: true })) continue;
      bottom = Math.max(bottom, box.bottom + scrollY);
    }
    if (document.body && quirks) {
      const range = document.createRange();
      range.selectNodeContents(document.body);
      bottom = Math.max(bottom, range.getBoundingClientRect().bottom + scrollY);
      if (bottom > 0) bottom += bottomMargin(document.body);
    }
    return bottom;
  };

  corvalisPage.size = () => {
    const root = viewportElement();
    const width = hidesOverflowRight() ? innerWidth : Math.min(Math.max(root.scrollWidth, innerWidth), widest);
    const fitsViewport = root.scrollHeight <= innerHeight;
    // The scroll height is rounded to the nearest pixel; a part of a row counts as a row here.
    const bottom = document.documentElement.getBoundingClientRect().bottom + scrollY - 0.05;
    const highHeight = bottom > root.scrollHeight + 1 ? root.scrollHeight : Math.max(root.scrollHeight, bottom);
    const height = fitsViewport ? Math.min(lowHeight(), innerHeight) : highHeight;
    return { width, height: Math.ceil(height), viewportWidth: innerWidth, viewportHeight: innerHeight };
  };

  const isFixedToViewport = (element) => {
    const before = element.getBoundingClientRect().top;
    const start = scrollY;
    corvalisPage.jumpTo(0, start === 0 ? 1 : 0);
    const moved = scrollY - start;
    const after = element.getBoundingClientRect().top;
    corvalisPage.jumpTo(0, start);
    return moved === 0 || Math.abs(after - before) < 0.5;
  };

  const isBottomBar = (box) =>
    box.top > innerHeight / 4 && (box.top + box.bottom) / 2 > innerHeight / 2 + 1 && box.top < innerHeight;

  const isOutside = (box) =>
    box.top >= innerHeight || box.bottom <= 0 || box.left >= innerWidth || box.right <= 0;

  // Documents that are written from right to left overflow to the left: on wider paper their right edge
  // is what stays where it is.
  const startsAtTheRight = () =>
    getComputedStyle(document.documentElement).direction === 'rtl' ||
    (document.body !== null && getComputedStyle(document.body).direction === 'rtl');

  // A fixed or absolute element keeps its size and place of the screen when the viewport changes.
  corvalisPage.pin = (element, shift) => {
    const style = getComputedStyle(element);
    const fromRight = startsAtTheRight();
    corvalisPage.override(element, {
      transition: 'none',
      width: style.width,
      height: style.height,
      left: fromRight ? 'auto' : style.left,
      right: fromRight ? style.right : 'auto',
      top: `${parseFloat(style.top) + shift}px`,
      bottom: 'auto',
    });
  };

  // It becomes part of the document, at the same place and stacked as before.
  const attach = (element, wantedTop, wantedLeft) => {
    corvalisPage.override(element, { position: 'absolute', isolation: 'isolate' });
    const box = element.getBoundingClientRect();
    const style = getComputedStyle(element);
    const toTheRight = wantedLeft - box.left;
    corvalisPage.override(element, {
      top: `${(parseFloat(style.top) || 0) + wantedTop - box.top}px`,
      ...(startsAtTheRight()
        ? { right: `${(parseFloat(style.right) || 0) - toTheRight}px` }
        : { left: `${(parseFloat(style.left) || 0) + toTheRight}px` }),
    });
  };

  const boxesOf = (elements) => elements.map((element) => element.getBoundingClientRect());

  const areSame = (boxes, others) =>
    boxes.every((box, index) => Math.abs(box.x - others[index].x) < 1 && Math.abs(box.y - others[index].y) < 1);

  // Printed text moves down where pages break, and a bar at the end would cover it: the bar goes with the
  // end of the root's box, if the document ends there and nothing else is moved by that.
  const hangFromEnd = (element, wantedBottom, placed) => {
    const root = document.documentElement;
    if (Math.abs(root.getBoundingClientRect().bottom - wantedBottom) >= 1) return;
    const together = [element, ...placed];
    const before = boxesOf(together);
    const { position } = getComputedStyle(root);
    const { top } = getComputedStyle(element);
    if (position === 'static') corvalisPage.override(root, { position: 'relative' });
    corvalisPage.override(element, { top: 'auto', bottom: '0' });
    const stands = areSame(before, boxesOf(together));
    if (stands) {
      corvalisPage.atEnd.add(element);
    } else {
      corvalisPage.override(root, { position });
      corvalisPage.override(element, { top, bottom: 'auto' });
    }
  };

  const isBackdrop = (style, box) =>
    style.zIndex < 0 && box.width >= innerWidth * 0.95 && box.height >= innerHeight * 0.95;

  // The engine paints what is fixed to the viewport on its first screen only: backgrounds go on with the
  // document.
  const spreadBackground = (element, style) => {
    if (!style.backgroundAttachment.includes('fixed')) return;
    corvalisPage.override(element, {
      'background-attachment': style.backgroundAttachment.replaceAll('fixed', 'scroll'),
    });
  };

  const spreadPseudoElements = (documentHeight) => {
    for (const element of [document.documentElement, document.body].filter(Boolean)) {
      for (const pseudo of ['::before', '::after']) {
        const style = getComputedStyle(element, pseudo);
        const box = { width: parseFloat(style.width), height: parseFloat(style.height) };
        if (style.content === 'none' || style.position !== 'fixed' || !isBackdrop(style, box)) continue;
        corvalisPage.addSheet(`${element.localName}${pseudo} { height: ${documentHeight}px !important; }`);
      }
    }
  };

  const contains = (outer, box) =>
    outer.left <= box.left && outer.right >= box.right && outer.top <= box.top && outer.bottom >= box.bottom;

  // A fixed element is free of the boxes around it, an absolute one may be cut off by them.
  const wouldBeCutOff = (element, place) => {
    const around = (inner) => inner.parentElement ?? inner.getRootNode().host;
    let isPlaced = false;
    for (let outer = around(element); outer && outer !== document.body; outer = around(outer)) {
      const style = getComputedStyle(outer);
      isPlaced ||= style.position !== 'static';
      if (isPlaced && style.overflow !== 'visible' && !contains(outer.getBoundingClientRect(), place)) return true;
    }
    return false;
  };

  const canBeAttached = (element, box, shift, size) => {
    const place = new DOMRect(box.x, box.y + shift, box.width, box.height);
    return contains(new DOMRect(0, 0, size.width, size.height), place) && !wouldBeCutOff(element, place);
  };

  const placeFixed = (element, size, pages, placed) => {
    const documentHeight = size.height;
    const box = element.getBoundingClientRect();
    if (box.width === 0 && box.height === 0) return;
    if (isBackdrop(getComputedStyle(element), box)) {
      corvalisPage.pin(element, 0);
      return corvalisPage.override(element, { height: `${documentHeight}px`, 'max-height': 'none' });
    }
    // A drawer that waits beside the screen must not show in a picture that goes further.
    if (isOutside(box)) return corvalisPage.override(element, { transition: 'none', opacity: '0' });
    const shift = isBottomBar(box) ? Math.max(0, documentHeight - innerHeight) : 0;
    corvalisPage.pin(element, shift);
    // Printed pages would each repeat it, and in pictures that go beyond the viewport the engine now and
    // then leaves out what is fixed outside of it.
    const attachable = pages === 'many' || canBeAttached(element, box, shift, size);
    if (attachable) attach(element, box.top + shift, box.left);
    if (pages === 'many' && shift > 0) hangFromEnd(element, box.bottom + shift, placed);
  };

  // Lays the document out flat, as it is to be pictured from top to end: what sticks to an edge of the
  // viewport goes to its own place, bars at the bottom go to the end. `restore` takes it back.
  corvalisPage.flatten = (pages) => {
    // The bars that hang from the end.
    corvalisPage.atEnd = new Set();
    const x = scrollX;
    const y = scrollY;
    corvalisPage.onRestore(() => corvalisPage.jumpTo(x, y));
    corvalisPage.jumpTo(0, 0);
    const fixed = [];
    const placed = [];
    for (const element of corvalisPage.elements(document)) {
      const style = getComputedStyle(element);
      spreadBackground(element, style);
      if (style.position === 'fixed') fixed.push(element);
      if (style.position === 'absolute') placed.push(element);
      if (style.position !== 'sticky') continue;
      corvalisPage.override(element, {
        position: 'relative', top: 'auto', bottom: 'auto', left: 'auto', right: 'auto',
      });
    }
    const size = corvalisPage.size();
    spreadPseudoElements(size.height);
    if (pages === 'many') corvalisPage.freezePlaced();
    for (const element of fixed.filter(isFixedToViewport)) placeFixed(element, size, pages, placed);
    return size;
  };
})();

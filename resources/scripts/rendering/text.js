(() => {
  const mostRuns = 500000;
  // A picture lower than this is kept on one page.
  const smallPicture = 400;

  const transforms = {
    uppercase: (text) => text.toLocaleUpperCase(),
    lowercase: (text) => text.toLocaleLowerCase(),
    capitalize: (text) => text.replace(/^\p{L}/u, (first) => first.toLocaleUpperCase()),
    none: (text) => text,
  };

  const intersect = (one, other) => ({
    left: Math.max(one.left, other.left),
    top: Math.max(one.top, other.top),
    right: Math.min(one.right, other.right),
    bottom: Math.min(one.bottom, other.bottom),
  });

  const everything = { left: -Infinity, top: -Infinity, right: Infinity, bottom: Infinity };

  // What the boxes around an element leave to be seen of it. Root and body clip for the viewport only.
  const makeClips = (view) => {
    const known = new Map();
    const clip = (element) => {
      if (!element || element === view.document.body || element === view.document.documentElement) {
        return everything;
      }
      if (known.has(element)) return known.get(element);
      const around = clip(element.parentElement ?? element.getRootNode().host);
      const hides = view.getComputedStyle(element).overflow !== 'visible';
      const own = hides ? intersect(around, element.getBoundingClientRect()) : around;
      known.set(element, own);
      return own;
    };
    return clip;
  };

  const isMostlySeen = (box, clip) => {
    if (box.width <= 0 || box.height <= 0 || box.right <= 0 || box.bottom + scrollY <= 0) return false;
    const seen = intersect(box, clip);
    const area = Math.max(0, seen.right - seen.left) * Math.max(0, seen.bottom - seen.top);
    return area * 2 > box.width * box.height;
  };

  const isVisible = (element) =>
    element.checkVisibility({ opacityProperty: true, visibilityProperty: true });

  const pen = new OffscreenCanvas(1, 1).getContext('2d');
  const buttons = ['submit', 'reset', 'button'];
  const lines = ['text', 'search', 'url', 'tel', 'email', 'number', ...buttons];

  const shownInField = (field) => {
    if (field.localName === 'select') {
      return field.multiple || field.size > 1 ? '' : field.selectedOptions[0]?.label ?? '';
    }
    if (!lines.includes(field.type)) return '';
    const unnamed = { submit: 'Submit', reset: 'Reset' };
    return field.value || (buttons.includes(field.type) ? unnamed[field.type] : field.placeholder) || '';
  };

  // Of the room that the text leaves, the share before it.
  const startOfText = (field, style) => {
    if (style.textAlign === 'center' || buttons.includes(field.type)) return 0.5;
    if (['left', 'right'].includes(style.textAlign)) return style.textAlign === 'right' ? 1 : 0;
    return (style.direction === 'rtl') === (style.textAlign === 'end') ? 0 : 1;
  };

  const round = (value) => Math.round(value * 100) / 100;

  class Reader {
    constructor(inner, offset, layer) {
      this.document = inner;
      this.view = inner.defaultView;
      this.offset = offset;
      this.layer = layer;
      this.clip = makeClips(this.view);
      this.range = inner.createRange();
      this.facts = new Map();
    }

    place(box) {
      return [round(box.left + this.offset.x), round(box.top + this.offset.y), round(box.width), round(box.height)];
    }

    textFacts(element) {
      if (this.facts.has(element)) return this.facts.get(element);
      const style = this.view.getComputedStyle(element);
      const facts = isVisible(element) && {
        size: parseFloat(style.fontSize),
        rightToLeft: style.direction === 'rtl' ? 1 : 0,
        transform: transforms[style.textTransform] ?? transforms.none,
        clip: this.clip(element),
      };
      this.facts.set(element, facts);
      return facts;
    }

    addRun(text, box, facts, endsWord) {
      if (!isMostlySeen(box, facts.clip)) return;
      const [x, y, width, height] = this.place(box);
      this.layer.runs.push(facts.transform(text), x, y, width, height, facts.size, facts.rightToLeft, endsWord ? 1 : 0);
    }

    rects(node, start, end) {
      this.range.setStart(node, start);
      this.range.setEnd(node, end);
      return [...this.range.getClientRects()].filter((box) => box.width > 0);
    }

    // A word that is broken over lines: the characters of each line, by their own boxes.
    addBrokenWord(node, start, end, facts, endsWord) {
      let text = '';
      let line = null;
      const flush = (last) => {
        if (line) this.addRun(text, DOMRect.fromRect(line), facts, last && endsWord);
      };
      for (let at = start; at < end;) {
        const next = Math.min(end, at + (node.data.codePointAt(at) > 0xffff ? 2 : 1));
        const box = this.rects(node, at, next)[0];
        const piece = node.data.slice(at, next);
        at = next;
        if (!box) {
          text += piece;
          continue;
        }
        const sameLine = line && Math.abs(box.y - line.y) < box.height / 2;
        if (sameLine) {
          const right = Math.max(line.x + line.width, box.right);
          line.x = Math.min(line.x, box.x);
          line.width = right - line.x;
          text += piece;
        } else {
          flush(false);
          line = { x: box.x, y: box.y, width: box.width, height: box.height };
          text = piece;
        }
      }
      flush(true);
    }

    readText(node, element) {
      const facts = this.textFacts(element);
      if (!facts) return;
      for (const match of node.data.matchAll(/\S+/g)) {
        if (this.layer.runs.length >= mostRuns * 8) {
          this.layer.truncated = true;
          return;
        }
        const end = match.index + match[0].length;
        const endsWord = end < node.data.length || !this.continues(node);
        const boxes = this.rects(node, match.index, end);
        if (boxes.length === 1) this.addRun(match[0], boxes[0], facts, endsWord);
        else if (boxes.length > 1) this.addBrokenWord(node, match.index, end, facts, endsWord);
      }
    }

    // Whether the word goes on in the next piece of text, as in "w<b>or</b>d".
    continues(node) {
      const next = node.nextSibling ?? node.parentNode?.nextSibling;
      const text = next?.nodeType === Node.TEXT_NODE ? next.data : next?.firstChild?.data;
      if (!text || /^\s/.test(text)) return false;
      const inline = (element) => this.view.getComputedStyle(element).display === 'inline';
      const crossed = [next, node.parentNode].filter((other) => other?.nodeType === Node.ELEMENT_NODE);
      return crossed.every((element) => element === next?.parentNode || inline(element));
    }

    readTree(root) {
      const walker = this.document.createTreeWalker(root, NodeFilter.SHOW_ELEMENT | NodeFilter.SHOW_TEXT);
      for (let node = walker.nextNode(); node; node = walker.nextNode()) {
        if (node.nodeType === Node.TEXT_NODE) {
          const element = node.parentElement ?? root.host;
          if (element && /\S/.test(node.data)) this.readText(node, element);
        } else {
          this.readElement(node);
        }
      }
    }

    readElement(element) {
      if (element.shadowRoot) this.readTree(element.shadowRoot);
      const name = element.localName;
      if (name === 'input' || name === 'select') this.readField(element);
      if (name === 'a' && element.hasAttribute('href')) this.readLink(element);
      else if (/^h[1-6]$/.test(name)) this.readHeading(element);
      else if (['img', 'svg', 'canvas', 'video', 'picture', 'input', 'button'].includes(name)) this.readPicture(element);
      else if (name === 'iframe' || name === 'frame') this.readFrame(element);
    }

    // What a form shows in one line stands in no text of the document: it is placed by its font.
    readField(element) {
      const text = shownInField(element).trim();
      const facts = text && this.textFacts(element);
      if (!facts) return;
      const style = this.view.getComputedStyle(element);
      pen.font = style.font;
      const box = element.getBoundingClientRect();
      // The engine keeps lists of choices four pixels from their padding.
      const inner = element.localName === 'select' ? { Left: 4, Right: 4 } : {};
      const inset = (side) =>
        parseFloat(style[`border${side}Width`]) + parseFloat(style[`padding${side}`]) + (inner[side] ?? 0);
      const free = box.width - inset('Left') - inset('Right') - pen.measureText(text).width;
      const share = startOfText(element, style);
      const left = box.left + inset('Left') + Math.max(0, free) * share;
      const top = (box.top + inset('Top') + box.bottom - inset('Bottom') - facts.size * 1.2) / 2;
      const inside = { ...facts, clip: intersect(facts.clip, box) };
      for (const word of text.matchAll(/\S+/g)) {
        const x = left + pen.measureText(text.slice(0, word.index)).width;
        this.addRun(word[0], new DOMRect(x, top, pen.measureText(word[0]).width, facts.size * 1.2), inside, true);
      }
    }

    readLink(element) {
      if (typeof element.href !== 'string' || !isVisible(element)) return;
      const boxes = [...element.getClientRects(), ...[...element.children].flatMap((child) => [...child.getClientRects()])];
      const clip = this.clip(element);
      const rects = boxes.filter((box) => isMostlySeen(box, clip)).map((box) => this.place(box));
      if (rects.length === 0) return;
      const target = this.targetOf(element);
      this.layer.links.push({ rects, ...(target === null ? { href: element.href } : { y: target }) });
    }

    // The place in this document that a link leads to, or null.
    targetOf(link) {
      const raw = link.getAttribute('href').trim();
      const here = this.document.URL.split('#')[0];
      if (!raw.startsWith('#') && (!link.hash || link.href.split('#')[0] !== here)) return null;
      let name = raw.slice(raw.indexOf('#') + 1);
      try {
        name = decodeURIComponent(name);
      } catch {
        // Taken as it is written.
      }
      if (name === '' || name.toLowerCase() === 'top') return 0;
      const target = this.document.getElementById(name) ?? this.document.getElementsByName(name)[0];
      return target ? round(target.getBoundingClientRect().top + this.offset.y) : null;
    }

    readHeading(element) {
      const text = element.textContent.replace(/\s+/g, ' ').trim();
      const box = element.getBoundingClientRect();
      if (!text || !isVisible(element) || !isMostlySeen(box, this.clip(element))) return;
      this.layer.headings.push([text.slice(0, 500), Number(element.localName[1]), this.place(box)[1]]);
    }

    readPicture(element) {
      const box = element.getBoundingClientRect();
      if (box.height <= 0 || box.height > smallPicture || !isVisible(element)) return;
      const [, y, , height] = this.place(box);
      if (isMostlySeen(box, this.clip(element))) this.layer.rows.push(y, round(y + height));
    }

    readFrame(element) {
      let inner = null;
      try {
        inner = element.contentDocument;
      } catch {
        // A frame of another origin.
      }
      if (!inner?.body || !isVisible(element)) return;
      const box = element.getBoundingClientRect();
      const offset = {
        x: this.offset.x + box.left + element.clientLeft,
        y: this.offset.y + box.top + element.clientTop,
      };
      new Reader(inner, offset, this.layer).readTree(inner.body);
    }
  }

  // The visible text, links, headings and small pictures with their places in the document. A text: no
  // tree of values has to be made of it on the way.
  corvalisPage.textLayer = () => {
    const layer = { runs: [], links: [], headings: [], rows: [], truncated: false };
    layer.language = document.documentElement.lang || null;
    if (document.body) new Reader(document, { x: scrollX, y: scrollY }, layer).readTree(document.body);
    return JSON.stringify(layer);
  };
})();

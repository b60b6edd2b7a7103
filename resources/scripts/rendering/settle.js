(() => {
  const lazyMarks =
    '[loading="lazy"], [data-src], [data-srcset], [data-lazy], [data-lazy-src], [data-original], ' +
    '[data-bg], [class*="lazy" i]';
  let pictures = null;
  let scroll = null;
  // Down to where the page has been seen; one that has grown since is looked at again.
  let seenHeight = 0;

  const wantPicture = (picture) => {
    if (picture.loading === 'lazy') picture.loading = 'eager';
    // Decoded with the frame that shows it: a picture taken now has no blank places.
    if (picture.decoding !== 'sync') picture.decoding = 'sync';
  };

  const collectPictures = () => {
    pictures = [];
    for (const inner of corvalisPage.documents()) {
      for (const root of corvalisPage.roots(inner)) {
        for (const picture of root.querySelectorAll('img')) {
          wantPicture(picture);
          pictures.push(picture);
        }
        for (const frame of root.querySelectorAll('iframe[loading="lazy"]')) frame.loading = 'eager';
      }
    }
  };

  const pendingPictures = () => pictures.filter((picture) => !picture.complete && picture.isConnected).length;

  const pendingFonts = () =>
    corvalisPage.documents().filter((inner) => inner.fonts?.status === 'loading').length;

  const shown = (animation) => {
    const target = animation.effect?.target;
    return !target || target.ownerDocument.defaultView.getComputedStyle(target).opacity > 0.05;
  };

  // An animation that runs for ever has no end to show: the state without it is the page's own. One that
  // follows the scroll position shows whichever end is visible.
  const end = (animation) => {
    try {
      if (animation.effect?.getComputedTiming().endTime === Infinity) return animation.cancel();
      animation.finish();
      const followsClock = animation.timeline instanceof DocumentTimeline;
      if (!followsClock && !shown(animation)) animation.cancel();
    } catch {
      animation.cancel();
    }
  };

  const running = () => {
    const found = new Set();
    for (const inner of corvalisPage.documents()) {
      for (const root of corvalisPage.roots(inner)) {
        for (const animation of root.getAnimations()) found.add(animation);
      }
    }
    return [...found].filter((animation) => ['running', 'paused'].includes(animation.playState));
  };

  // Without lazy marks and observers nothing waits to be seen, and the page need not be walked through.
  const waitsToBeSeen = () => {
    const ask = () => new Event('corvalisasksforobservers', { cancelable: true });
    const mayObserve = (inner) => inner.defaultView?.dispatchEvent(ask()) ?? false;
    return document.querySelector(lazyMarks) !== null || corvalisPage.documents().some(mayObserve);
  };

  corvalisPage.settleBegin = () => {
    const waits = waitsToBeSeen();
    collectPictures();
    const root = document.scrollingElement ?? document.documentElement;
    return {
      ...corvalisPage.settleState(),
      waitsToBeSeen: waits,
      unseen: root.scrollHeight > Math.max(innerHeight, seenHeight) + 1,
    };
  };

  corvalisPage.settleState = () => ({
    pictures: pendingPictures(),
    fonts: pendingFonts(),
    foreignFrames: corvalisPage.foreignFrames(),
  });

  corvalisPage.foreignFrames = () => {
    let count = 0;
    for (const frame of document.querySelectorAll('iframe, frame')) {
      try {
        if (!frame.contentDocument && frame.src) count++;
      } catch {
        count++;
      }
    }
    return count;
  };

  // Ends what moves, and what begins to move because of that, and counts what still does.
  corvalisPage.finishMotion = () => {
    for (let round = 0; round < 3; round++) {
      const moving = running();
      if (moving.length === 0) break;
      moving.forEach(end);
    }
    corvalisPage.jumpTo(0, 0);
    return running().length;
  };

  // Walks down the page in steps of the viewport. A page that grows while it is walked is followed to
  // twice its height and ten viewports more, and for so many steps.
  corvalisPage.scrollBegin = () => {
    const root = document.scrollingElement ?? document.documentElement;
    scroll = { y: 0, end: root.scrollHeight * 2 + innerHeight * 10 };
    return true;
  };

  // One step; tells whether there is another. A frame passes with each, so that observers see the place:
  // what they are told of follows the frame's own callbacks.
  corvalisPage.scrollStep = () => {
    const root = document.scrollingElement ?? document.documentElement;
    scroll.y += innerHeight;
    corvalisPage.jumpTo(0, scroll.y);
    const end = Math.min(root.scrollHeight, scroll.end) - innerHeight;
    return new Promise((resolve) => {
      requestAnimationFrame(() => setTimeout(() => resolve(scroll.y < end)));
    });
  };

  // All of the page as it is now has been seen, or nothing in it waits to be.
  corvalisPage.noteSeen = () => {
    seenHeight = (document.scrollingElement ?? document.documentElement).scrollHeight;
    return corvalisPage.settleState();
  };

  corvalisPage.scrollEnd = () => {
    corvalisPage.noteSeen();
    corvalisPage.jumpTo(0, 0);
    collectPictures();
    return true;
  };
})();

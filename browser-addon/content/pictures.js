// What is painted and not in the markup: canvases, and pictures that only this tab can load.

(() => {
  /** A picture of our own origin as a data address; undefined when it cannot be read. */
  function dataAddress(source, width, height) {
    if (width < 1 || height < 1) return undefined;
    try {
      const canvas = document.createElement('canvas');
      canvas.width = width;
      canvas.height = height;
      canvas.getContext('2d').drawImage(source, 0, 0);
      return canvas.toDataURL();
    } catch (anotherOrigin) {
      return undefined;
    }
  }

  corvalis.canvasAddress = canvas => {
    try {
      return canvas.width && canvas.height ? canvas.toDataURL() : undefined;
    } catch (anotherOrigin) {
      return undefined;
    }
  };

  /** The source that the browser has chosen; an address that ends with the tab is replaced. */
  corvalis.pictureAddress = image => {
    const source = image.currentSrc || image.src;
    if (!source.startsWith('blob:')) return corvalis.embedded(source);
    return dataAddress(image, image.naturalWidth, image.naturalHeight) ?? '';
  };

  const boxProperties = ['display', 'position', 'left', 'top', 'right', 'bottom', 'float', 'clear',
    'width', 'height', 'min-width', 'min-height', 'max-width', 'max-height', 'aspect-ratio', 'margin',
    'padding', 'border-width', 'border-style', 'border-color', 'border-radius', 'box-sizing', 'box-shadow', 'outline', 'background', 'opacity',
    'transform', 'transform-origin', 'translate', 'rotate', 'scale', 'filter', 'clip-path',
    'mix-blend-mode', 'object-fit', 'object-position', 'image-rendering', 'vertical-align', 'z-index',
    'visibility', 'flex', 'order', 'align-self', 'justify-self', 'grid-area'];

  /**
   * The page's rules for canvases do not reach the picture that takes the place of one; its rules for
   * pictures must not.
   */
  corvalis.boxStyle = element => {
    const style = getComputedStyle(element);
    return boxProperties.map(name => `${name}: ${style.getPropertyValue(name)} !important`).join('; ');
  };
})();

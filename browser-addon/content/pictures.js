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
    if (!source.startsWith('blob:')) return source;
    return dataAddress(image, image.naturalWidth, image.naturalHeight) ?? '';
  };

  const boxProperties = ['display', 'position', 'left', 'top', 'right', 'bottom', 'float', 'width',
    'height', 'margin', 'padding', 'border', 'box-sizing', 'background', 'opacity', 'transform',
    'object-fit', 'vertical-align', 'z-index', 'max-width', 'max-height', 'visibility'];

  /** The page's rules for canvases do not reach the picture that takes the place of one. */
  corvalis.boxStyle = element => {
    const style = getComputedStyle(element);
    return boxProperties.map(name => `${name}: ${style.getPropertyValue(name)}`).join('; ');
  };
})();

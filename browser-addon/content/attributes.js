// The attributes of an element as they are to be written: what the user has changed is in them,
// what would load or run again is not.

(() => {
  const isHandler = name => /^on/i.test(name);

  /** `true` is an attribute without a value. */
  function set(attributes, name, value) {
    if (value === undefined || value === false) attributes.delete(name);
    else attributes.set(name, value === true ? '' : String(value));
  }

  const writers = {
    input(element, attributes) {
      if (element.type === 'checkbox' || element.type === 'radio') {
        set(attributes, 'checked', element.checked);
      } else if (element.type === 'password') {
        // The user sees dots; nothing else leaves the browser.
        set(attributes, 'value', '•'.repeat(element.value.length));
      } else if (element.type !== 'file' && element.type !== 'image') {
        set(attributes, 'value', element.value);
      }
    },
    option(element, attributes) {
      set(attributes, 'selected', element.selected);
    },
    img(element, attributes) {
      set(attributes, 'src', corvalis.pictureAddress(element) || undefined);
      for (const name of ['srcset', 'sizes', 'loading']) attributes.delete(name);
    },
    source(element, attributes) {
      // The picture's element already has the source that was chosen.
      if (element.parentElement?.localName === 'picture') attributes.delete('srcset');
    },
    a: absolute('href'),
    link: absolute('href'),
  };

  function absolute(name) {
    return (element, attributes) => {
      const isOwnPart = /^#/.test(attributes.get(name) ?? '#');
      if (!isOwnPart && element[name]) set(attributes, name, element[name]);
    };
  }

  corvalis.attributesOf = element => {
    const attributes = new Map();
    for (const {name, value} of element.attributes)
      if (!isHandler(name) && name !== 'nonce') attributes.set(name, value);
    if (/url\(/i.test(attributes.get('style') ?? ''))
      attributes.set('style', corvalis.styleText(element));
    if (element.namespaceURI === 'http://www.w3.org/1999/xhtml')
      writers[element.localName]?.(element, attributes);
    return attributes;
  };
})();

// Hands the page to Corvalis by its address scheme. The build makes one line of it, so comments
// stand on lines of their own and every statement ends with a semicolon or a brace.
(() => {
  // The most that browsers on Linux pass on as an address; they say nothing about longer ones.
  const longestAddress = 131071;
  // Half a surrogate pair has no encoding; the replacement character stands for it.
  const halves = /[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g;
  const encode = text => btoa(encodeURI(text.replace(halves, '\uFFFD')));

  // What the user has typed is not in the markup of a page.
  const written = root => {
    const copy = root.cloneNode(true);
    const copies = copy.querySelectorAll('*');
    root.querySelectorAll('*').forEach((element, index) => settle(element, copies[index]));
    return copy.outerHTML;
  };

  const settle = (element, copy) => {
    const name = element.localName;
    if (name === 'textarea') copy.textContent = element.value;
    if (name === 'option') copy.toggleAttribute('selected', element.selected);
    if (name === 'input') settleInput(element, copy);
    if (name === 'img' && element.currentSrc) {
      copy.src = element.currentSrc;
      copy.removeAttribute('srcset');
    }
  };

  const settleInput = (input, copy) => {
    if (input.type === 'checkbox' || input.type === 'radio') copy.toggleAttribute('checked', input.checked);
    else if (input.type === 'password') copy.setAttribute('value', '•'.repeat(input.value.length));
    else if (input.type !== 'file') copy.setAttribute('value', input.value);
  };

  const rules = sheet => {
    try {
      return [...sheet.cssRules].map(rule => rule.cssText).join(' ');
    } catch (anotherOrigin) {
      return '';
    }
  };

  const frameItem = frame => {
    try {
      return 'iframe::' + encode(written(frame.contentDocument.documentElement));
    } catch (anotherOrigin) {
      return 'iframe::';
    }
  };

  const address = location.href.replace(/^http(s?):/, 'corvxurl$1:');
  const styles = [...document.styleSheets, ...(document.adoptedStyleSheets || [])].map(rules).join(' ');
  const frames = [...document.getElementsByTagName('iframe')].map(frameItem).join('');
  const doctype = document.compatMode === 'CSS1Compat' ? '<!DOCTYPE html>' : '';
  const data = encode(doctype + written(document.documentElement)) + 'corvxstyles::' + encode(styles) + 'iframes::' + frames;
  const request = address + 'corvxdata::' + encodeURIComponent(data);
  const question = 'This page is too large for the Corvalis bookmark: it has ' + request.length
    + ' characters, and the browser passes on at most ' + longestAddress
    + '. The Corvalis add-on has no such limit. Send only the address instead? Corvalis then loads the page itself, without your log-in.';

  if (!/^https?:/.test(location.href)) alert('Corvalis captures web pages only.');
  else if (request.length <= longestAddress) location.href = request;
  else if (confirm(question)) location.href = address;
})();

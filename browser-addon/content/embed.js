// The pictures and fonts of this frame's own origin as data addresses: they may be shown to a user
// who has logged in only, and the program that loads them again has not. It runs before the scripts
// that write the page down, and is left out where the page has to stay small.

globalThis.corvalis ??= {};

(() => {
  const patience = 5_000;
  const longestFile = 8 * 1024 * 1024;
  /** Characters in all: one picture can stand in many rules. */
  const longestWhole = 32 * 1024 * 1024;

  const isPart = type => /^(image|font)\/|^application\/(x-)?font/.test(type);

  /** What the page has loaded, so that the browser has it at hand, and shows it. */
  function loadedAddresses() {
    const entries = performance.getEntriesByType('resource')
      .filter(entry => ['img', 'image', 'css', 'input'].includes(entry.initiatorType))
      .map(entry => entry.name);
    // The list of entries ends at some length; the pictures do not.
    const pictures = [...document.images].map(image => image.currentSrc);
    return [...new Set([...entries, ...pictures])].filter(isOwn);
  }

  function isOwn(address) {
    return /^https?:/.test(address) && new URL(address).origin === location.origin;
  }

  function dataAddress(blob) {
    return new Promise((resolve, reject) => {
      const reader = new FileReader();
      reader.onload = () => resolve(reader.result);
      reader.onerror = () => reject(reader.error);
      reader.readAsDataURL(blob);
    });
  }

  /** Undefined where the address had better stay. */
  async function contents(address) {
    try {
      const reply = await fetch(address,
        {cache: 'force-cache', credentials: 'same-origin', signal: AbortSignal.timeout(patience)});
      if (!reply.ok || !isPart(reply.headers.get('Content-Type') ?? '')) return undefined;
      const blob = await reply.blob();
      return blob.size <= longestFile ? await dataAddress(blob) : undefined;
    } catch (unreachable) {
      return undefined;
    }
  }

  /** A function from an address to what is to be written for it. */
  async function embedding() {
    const addresses = loadedAddresses();
    const found = await Promise.all(addresses.map(contents));
    const data = new Map(addresses.map((address, index) => [address, found[index]]));
    let left = longestWhole;
    return address => {
      const content = data.get(address);
      if (!content || content.length > left) return address;
      left -= content.length;
      return content;
    };
  }

  corvalis.embedding = embedding();
})();

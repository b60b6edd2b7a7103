// Style sheets of another origin, which a page's own scripts cannot read. Their links stay in the
// markup; the text is put among the other sheets as well, so that the rules keep their order.

const patience = 5_000;
const longestSheet = 4 * 1024 * 1024;

const addressForm = /url\(\s*(?:"((?:[^"\\]|\\.)*)"|'((?:[^'\\]|\\.)*)'|([^)'"\s]*))\s*\)/g;

/** Addresses are relative to their sheet; the text goes to another place. */
function withAbsoluteAddresses(text, base) {
  return text.replace(addressForm, (whole, double, single, bare) => {
    const address = double ?? single ?? bare;
    if (/^(data:|#)/i.test(address) || !URL.canParse(address, base)) return whole;
    return `url("${new URL(address, base).href}")`;
  });
}

/** Empty when the sheet cannot be had, or would not be the same in the midst of others. */
async function fetchedText(address) {
  try {
    const reply = await fetch(address, {
      cache: 'force-cache', credentials: 'omit', signal: AbortSignal.timeout(patience)});
    if (!reply.ok || !/^text\/css\b/.test(reply.headers.get('Content-Type') ?? '')) return '';
    const text = await reply.text();
    if (text.length > longestSheet || /@(import|namespace)\b/i.test(text)) return '';
    return withAbsoluteAddresses(text, address).replace(/<\/(style)/gi, '<\\/$1');
  } catch (unreachable) {
    return '';
  }
}

async function sheetText({text, address, media}) {
  if (text !== undefined) return text;
  const fetched = address ? await fetchedText(address) : '';
  return media && fetched ? `@media ${media} { ${fetched} }` : fetched;
}

/** The sheets of a document as one text, in their order. */
export async function joinedStyles(sheets) {
  return (await Promise.all(sheets.map(sheetText))).join('\n');
}

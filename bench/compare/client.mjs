// A plain script of the usual client: one browser, one page after the other.
//   node client.mjs png|png-fast|jpeg|pdf|pdf-pages OUT SCALE PAGE...
import { basename, join } from 'node:path';
import { pathToFileURL } from 'node:url';
import puppeteer from 'puppeteer-core';

const [kind, out, scale, ...pages] = process.argv.slice(2);
const browser = await puppeteer.launch({
  executablePath: process.env.CORVALIS_ENGINE,
  args: ['--no-sandbox', '--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1'],
});
for (const path of pages) {
  const page = await browser.newPage();
  await page.setJavaScriptEnabled(false);
  await page.setViewport({ width: 1024, height: 768, deviceScaleFactor: Number(scale) });
  await page.goto(pathToFileURL(path).href, { waitUntil: 'load' });
  const file = join(out, basename(path, '.html'));
  if (kind === 'pdf') {
    await page.emulateMediaType('screen');
    const height = await page.evaluate(() => document.documentElement.scrollHeight);
    await page.pdf({ path: `${file}.pdf`, width: '1024px', height: `${height + 1}px`, printBackground: true });
  } else if (kind === 'pdf-pages') {
    await page.pdf({ path: `${file}.pdf`, format: 'A4', printBackground: true });
  } else if (kind === 'jpeg') {
    await page.screenshot({ path: `${file}.jpg`, type: 'jpeg', quality: 90, fullPage: true });
  } else {
    await page.screenshot({ path: `${file}.png`, fullPage: true, optimizeForSpeed: kind === 'png-fast' });
  }
  await page.close();
}
await browser.close();

// Prints times and sizes side by side, the contestants taking turns in one run.
//   node compare.mjs PAGES_FOLDER [ROUNDS] [TITLE]   only the comparisons whose title contains TITLE
import { spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, readdirSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const corvalis = resolve(here, '../../build/release/src/app/corvalis');
const rule = "--host-resolver-rules='MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1'";
process.env.CORVALIS_ENGINE ??= '/usr/lib/chromium/chromium-headless-shell';
process.env.CORVALIS_ENGINE_ARGS ??= rule;

const folder = process.argv[2];
const rounds = Number(process.argv[3] ?? 3);
const wanted = process.argv[4] ?? '';
const pages = readdirSync(folder).filter((name) => name.endsWith('.html')).map((name) => join(folder, name));

function ours(args, sources, out) {
  return [corvalis, ['capture', '--quiet', ...args, '-o', out + '/', ...sources]];
}
function client(kind, sources, out, scale = '1') {
  return ['node', [join(here, 'client.mjs'), kind, out, scale, ...sources]];
}
function browser(kind, source, out) {
  const common = ['--no-sandbox', rule.replaceAll("'", ''), '--window-size=1024,768'];
  const what = kind === 'pdf' ? `--print-to-pdf=${out}/a.pdf` : `--screenshot=${out}/a.png`;
  return [process.env.CORVALIS_ENGINE, [...common, what, 'file://' + source]];
}

function timed(make) {
  const out = mkdtempSync(join(tmpdir(), 'compare-'));
  const [program, args] = make(out);
  const begin = process.hrtime.bigint();
  const run = spawnSync(program, args, { stdio: ['ignore', 'ignore', 'pipe'] });
  const seconds = Number(process.hrtime.bigint() - begin) / 1e9;
  if (run.status !== 0) throw new Error(`${program} ended with ${run.status}: ${run.stderr ?? run.error}`);
  const bytes = readdirSync(out).reduce((sum, name) => sum + statSync(join(out, name)).size, 0);
  rmSync(out, { recursive: true });
  return { seconds, bytes };
}

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

function compare(title, contestants) {
  if (!title.includes(wanted)) return;
  const results = contestants.map(() => []);
  for (let round = 0; round < rounds; ++round) {
    contestants.forEach(([, make], index) => results[index].push(timed(make)));
  }
  const own = median(results[0].map((result) => result.seconds));
  contestants.forEach(([name], index) => {
    const seconds = median(results[index].map((result) => result.seconds));
    const megabytes = results[index][0].bytes / 1e6;
    const ratio = index === 0 ? '' : `  ours is ${(seconds / own).toFixed(2)} times as fast`;
    console.log(`${title.padEnd(26)} ${name.padEnd(18)} ${seconds.toFixed(2)} s ${megabytes.toFixed(1)} MB${ratio}`);
  });
}

/// Peak resident memory of our own process (not the browser's) in MB.
function peakMemory(args) {
  return new Promise((done) => {
    const child = spawn(corvalis, args, { stdio: 'inherit' });
    let peak = 0;
    const watch = setInterval(() => {
      try {
        const status = readFileSync(`/proc/${child.pid}/status`, 'utf8');
        peak = Math.max(peak, Number(/VmHWM:\s+(\d+)/.exec(status)?.[1] ?? 0) / 1024);
      } catch { /* it has ended */ }
    }, 10);
    child.on('exit', () => { clearInterval(watch); done(peak); });
  });
}

async function tall(height, formats) {
  if (!'tall made page'.includes(wanted)) return;
  const out = mkdtempSync(join(tmpdir(), 'tall-'));
  const page = join(out, 'tall.html');
  const rows = Array.from({ length: height / 100 }, (_, row) =>
    `<div style="height:100px;background:hsl(${(row * 37) % 360},60%,${row % 2 ? 80 : 90}%)">row ${row}</div>`);
  writeFileSync(page, `<!DOCTYPE html><title>tall</title><body style="margin:0">${rows.join('')}`);
  for (const [name, args] of formats) {
    const begin = process.hrtime.bigint();
    const peak = await peakMemory(['capture', '--quiet', ...args, '-o', out + '/', page]);
    const seconds = Number(process.hrtime.bigint() - begin) / 1e9;
    console.log(`1024 x ${height} to ${name.padEnd(12)} ${seconds.toFixed(2)} s, peak memory of our process ${peak.toFixed(0)} MB`);
  }
  rmSync(out, { recursive: true });
}

compare('all pages to PNG', [
  ['corvalis', (out) => ours(['--format', 'PNG'], pages, out)],
  ['client', (out) => client('png', pages, out)],
  ['client, fast PNG', (out) => client('png-fast', pages, out)],
]);
compare('all pages to tall PDF', [
  ['corvalis', (out) => ours(['--format', 'PDF'], pages, out)],
  ['client', (out) => client('pdf', pages, out)],
]);
compare('all pages to paged PDF', [
  ['corvalis', (out) => ours(['--format', 'PDF', '--paginate'], pages, out)],
  ['client', (out) => client('pdf-pages', pages, out)],
]);
compare('all pages to JPEG', [
  ['corvalis', (out) => ours(['--format', 'JPEG', '--compression', '0.9'], pages, out)],
  ['client', (out) => client('jpeg', pages, out)],
]);
for (const format of ['TIFF', 'GIF', 'BMP', 'JP2']) {
  compare(`all pages to ${format}`, [['corvalis', (out) => ours(['--format', format], pages, out)]]);
}
compare('PNG at scale 2', [
  ['corvalis', (out) => ours(['--format', 'PNG', '--scale', '2'], pages, out)],
  ['client', (out) => client('png', pages, out, '2')],
]);
compare('image PDF', [
  ['corvalis', (out) => ours(['--format', 'PDF', '--mode', 'Image'], pages, out)],
]);
const single = pages.find((page) => page.includes('mozilla')) ?? pages[0];
compare('one cold page to PDF', [
  ['corvalis', (out) => ours(['--format', 'PDF'], [single], out)],
  ['browser itself', (out) => browser('pdf', single, out)],
]);
compare('one cold page to PNG', [
  ['corvalis', (out) => ours(['--format', 'PNG'], [single], out)],
  ['browser, viewport', (out) => browser('png', single, out)],
]);
await tall(100000, [['PNG', ['--format', 'PNG']]]);
await tall(200000, [
  ['PNG', ['--format', 'PNG']],
  ['TIFF', ['--format', 'TIFF']],
  ['image PDF', ['--format', 'PDF', '--mode', 'Image']],
]);

// The web player's weight and speed: the gzipped size of each build's wasm and scripts (fonts are
// fetched apart, on first use), and the time from the start of a page's load to the first
// card painted on the demo stack, in headless Chromium: best and median of eleven first visits (a cold
// cache) and of eleven repeat visits, with the median of each step between the player's marks.
// Targets: at most 1.5 MB gzipped; at most 400 ms to the first card. Then the same first visit
// over a link of 20 Mbit/s and 20 ms (Chromium's network emulation), where what the player
// downloads shows: no target.
// Usage: node bench/web-bench.mjs SITE_DIR   (make bench-web)
import { spawn } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';

const { chromium } = await import(new URL('../tests/web/node_modules/playwright-core/index.mjs', import.meta.url));
const site = process.argv[2];
const RUNS = 11;
const SIZE_TARGET = 1.5 * 1024 * 1024;
const TIME_TARGET_MS = 400;

const gz = (name) => gzipSync(readFileSync(join(site, name)), { level: 9 }).length;
// What a browser downloads: the build without Asyncify where it can suspend a wasm stack itself
// (Chromium, which the times below are taken in), the Asyncify build elsewhere.
const BUILDS = { 'stack switching': ['quillbrook.wasm', 'quillbrook.js', 'quillbrook-module.js'],
  asyncify: ['quillbrook-asyncify.wasm', 'quillbrook.js', 'quillbrook-module-asyncify.js'] };
for (const [build, files] of Object.entries(BUILDS)) {
  const size = files.reduce((sum, name) => sum + gz(name), 0);
  console.log(`size, ${build}: ${files.map((name) => `${name} ${gz(name)}`).join(' + ')} = ` +
    `${(size / 1024 / 1024).toFixed(2)} MB gzipped (target <= 1.5 MB) ${size <= SIZE_TARGET ? 'ok' : 'OVER'}`);
}

writeFileSync(join(site, 'bench.html'), '<!DOCTYPE html><html><head><script src="quillbrook.js"></script></head>' +
  '<body><embed src="demo.stk" type="application/qbrk" width="640" height="480"></body></html>');
const server = spawn('python3', ['-u', '-m', 'http.server', '0', '--bind', '127.0.0.1', '--directory', site],
  { stdio: ['ignore', 'pipe', 'ignore'] });
const url = await new Promise((resolve) => server.stdout.on('data', (data) => {
  const port = /port (\d+)/.exec(String(data));
  if (port) resolve(`http://127.0.0.1:${port[1]}/bench.html`);
}));

const browser = await chromium.launch({ executablePath: '/usr/bin/chromium',
  args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking'] });
const medianOf = (values) => values.slice().sort((a, b) => a - b)[Math.floor(values.length / 2)];
// The steps of a start, each from the mark before it (the first from the page's start).
const STEPS = ['wasm requested', 'compiled', 'ready', 'window', 'stack', 'card'];

// RUNS loads, each in a new context (a cold cache); `repeat` loads the page once, a second before
// the load that counts, so that the browser's caches hold what the first visit left; `link`, if
// given, is the emulated network.
const LINK = { offline: false, latency: 20, downloadThroughput: 20e6 / 8, uploadThroughput: 20e6 / 8 };
async function measure(name, repeat, link) {
  const times = [];
  const marks = [];
  for (let run = 0; run < RUNS; ++run) {
    const context = await browser.newContext();
    const page = await context.newPage();
    if (link) await (await context.newCDPSession(page)).send('Network.emulateNetworkConditions', link);
    await page.addInitScript(() => {
      document.addEventListener('quillbrook:card', () => { window.firstCardMs = performance.now(); }, true);
    });
    for (let load = repeat ? 2 : 1; load > 0; --load) {
      await page.goto(url);
      await page.waitForFunction(() => window.firstCardMs > 0, null, { timeout: 20000 });
      if (load > 1) await page.waitForTimeout(1000);  // the first visit's page has settled
    }
    times.push(await page.evaluate(() => window.firstCardMs));
    marks.push(await page.evaluate(() => {
      const at = {};
      const wasm = performance.getEntriesByType('resource').find((entry) => /quillbrook(-asyncify)?\.wasm(\.gz)?$/.test(entry.name));
      if (wasm) at['wasm requested'] = wasm.startTime;
      for (const entry of performance.getEntriesByType('mark')) at[entry.name.replace('quillbrook:', '')] = entry.startTime;
      return at;
    }));
    await context.close();
  }
  const median = medianOf(times);
  const steps = STEPS.map((step, i) => {
    const spans = marks.map((at) => at[step] - (i ? at[STEPS[i - 1]] : 0)).filter((span) => span >= 0);
    return `${step} +${spans.length ? medianOf(spans).toFixed(0) : '?'}`;
  });
  const verdict = link ? '' : ` (target <= ${TIME_TARGET_MS} ms) ${median <= TIME_TARGET_MS ? 'ok' : 'OVER'}`;
  console.log(`${name}: first card best ${Math.min(...times).toFixed(0)} ms, median ${median.toFixed(0)} ms of ${RUNS}${verdict}`);
  console.log(`  steps, median ms: ${steps.join(', ')}`);
}

await measure('first visit', false);
await measure('repeat visit', true);
await measure('first visit over 20 Mbit/s', false, LINK);
await browser.close();
server.kill();

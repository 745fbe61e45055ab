// The web player in Debian's Chromium, driven by playwright-core: pages on 127.0.0.1 embed stacks
// the way old pages did, and the canvas must show what `quillbrook render` draws.
// Usage: node web-player.test.mjs SITE_DIR QUILLBROOK_CLI SECOND_STACK DEMO_SOURCE_DIR
import { execFileSync, spawn } from 'node:child_process';
import { copyFileSync, cpSync, mkdtempSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

const [site, cli, secondStack, demoSource] = process.argv.slice(2);
const CHROMIUM_FLAGS = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
  '--disable-background-networking', '--disable-component-update', '--disable-sync',
  '--autoplay-policy=no-user-gesture-required'];

// --- The site: the player, the stacks, the reference frames, and one page per case ----------------
copyFileSync(secondStack, join(site, 'second.stk'));
writeFileSync(join(site, 'notastack.stk'), 'This is a text file, not a stack.\n'.repeat(20));
const demo = readFileSync(join(site, 'demo.stk'));
writeFileSync(join(site, 'damaged.stk'), demo.subarray(0, 4096));
// The demo's cards hide the menu, and with it the moving keys; this copy shows it.
const menuDemo = mkdtempSync(join(tmpdir(), 'qb-menu-demo-'));
cpSync(demoSource, menuDemo, { recursive: true });
const description = JSON.parse(readFileSync(join(menuDemo, 'demo.json'), 'utf8'));
for (const card of description.cards) card.menuShown = 1;
writeFileSync(join(menuDemo, 'demo.json'), JSON.stringify(description));
execFileSync(cli, ['build', join(menuDemo, 'demo.json'), '-o', join(site, 'menu.stk')]);

const references = join(site, 'ref');
const render = (stack, card, out) =>
  execFileSync(cli, ['render', join(site, stack), '--card', String(card), '-o', join(site, 'ref', out)]);
execFileSync('mkdir', ['-p', references]);
// Cards are counted in the demo's own order, found by name so that a card added to the demo moves none.
const cardNumber = (name) => description.cards.findIndex((card) => card.name === name) + 1;
const DEMO_CARDS = { welcome: 'Welcome', pictures: 'Pictures', shapes: 'Shapes', transitions: 'Transitions',
  about: 'About', arrived: 'Arrived', text: 'Text' };
for (const [file, name] of Object.entries(DEMO_CARDS)) render('demo.stk', cardNumber(name), `${file}.png`);
render('second.stk', 1, 'second.png');
render('menu.stk', 2, 'menu-2.png');

const page = (body) => `<!DOCTYPE html><html><head><script src="quillbrook.js"></script></head>` +
  `<body style="margin:0">${body}<button id="ping" onclick="window.pinged = performance.now()">ping</button></body></html>`;
const EMBED = (src, extra = '') => `<embed src="${src}" type="application/qbrk" width="640" height="480"${extra}>`;
const PAGES = {
  'one.html': EMBED('demo.stk'),
  'menu.html': EMBED('menu.stk'),
  'two.html': EMBED('demo.stk') + EMBED('second.stk'),
  'object.html': `<object data="demo.stk" type="application/qbrk" width="640" height="480">${EMBED('demo.stk')}</object>`,
  'errors.html': EMBED('missing.stk') + EMBED('notastack.stk'),
  'damaged.html': EMBED('damaged.stk'),
  'later.html': '<div id="slot"></div><script>setTimeout(() => { document.getElementById("slot").innerHTML = ' +
    `'${EMBED('second.stk')}'; }, 300);</script>`,
};
for (const [name, body] of Object.entries(PAGES)) writeFileSync(join(site, name), page(body));

// --- Helpers -----------------------------------------------------------------------------------
function serve(dir) {
  const server = spawn('python3', ['-u', '-m', 'http.server', '0', '--bind', '127.0.0.1', '--directory', dir],
    { stdio: ['ignore', 'pipe', 'ignore'] });
  return new Promise((resolve, reject) => {
    server.stdout.on('data', (data) => {
      const port = /port (\d+)/.exec(String(data));
      if (port) resolve({ server, url: `http://127.0.0.1:${port[1]}/` });
    });
    server.on('exit', () => reject(new Error('the HTTP server did not start')));
  });
}

// Differing pixels between the `index`th canvas and a reference PNG; -1 when the sizes differ.
function differences(tab, index, png) {
  return tab.evaluate(async ([i, src]) => {
    const image = new Image();
    image.src = src;
    await image.decode();
    const canvas = document.querySelectorAll('canvas')[i];
    if (!canvas || canvas.width !== image.width || canvas.height !== image.height) return -1;
    const scratch = document.createElement('canvas');
    scratch.width = image.width;
    scratch.height = image.height;
    const context = scratch.getContext('2d');
    context.drawImage(image, 0, 0);
    const want = context.getImageData(0, 0, image.width, image.height).data;
    const have = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    let count = 0;
    for (let p = 0; p < want.length; p += 4) {
      if (want[p] !== have[p] || want[p + 1] !== have[p + 1] || want[p + 2] !== have[p + 2]) ++count;
    }
    return count;
  }, [index, `ref/${png}`]);
}

// Waits until the canvas matches the reference (but for `allowed` pixels); the last count of
// differing pixels otherwise.
async function settlesOn(tab, index, png, ms = 8000, allowed = 0) {
  const end = Date.now() + ms;
  let diff = -2;
  while (Date.now() < end) {
    diff = await differences(tab, index, png);
    if (diff >= 0 && diff <= allowed) return 0;
    await tab.waitForTimeout(100);
  }
  return diff;
}

async function clickCanvas(tab, index, x, y) {
  const box = await tab.locator('canvas').nth(index).boundingBox();
  await tab.mouse.click(box.x + x, box.y + y);
}

// What the first player's host clipboard holds, Windows-1252 bytes as hex; null for no text.
const clipboardHeld = (tab) => tab.evaluate(() => {
  const { _QbWebClipboardText: held, HEAPU8: heap } = Quillbrook.players[0].module;
  const ptr = held();
  return ptr ? Array.from(heap.subarray(ptr, heap.indexOf(0, ptr)), (b) => b.toString(16).padStart(2, '0')).join(' ') : null;
});

const failures = [];
function check(name, ok, detail = '') {
  console.log(`${ok ? 'ok  ' : 'FAIL'} ${name}${ok ? '' : ` (${detail})`}`);
  if (!ok) failures.push(name);
}

// --- The cases ---------------------------------------------------------------------------------
const { server, url } = await serve(site);
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: CHROMIUM_FLAGS });
// Headless Chromium lets sound out without a gesture whatever it is told (and playwright's evaluate
// counts as one); a page opened with holdSoundBack gets an AudioContext that, as browsers do by
// default, stays suspended until the person has pressed the mouse on the page.
function holdSoundBack() {
  const Real = window.AudioContext;
  let touched = false;
  addEventListener('mousedown', (event) => { touched = touched || event.isTrusted; }, true);
  window.AudioContext = class extends Real {
    constructor(options) {
      super(options);
      this.held = true;
      super.suspend();
    }
    get state() { return this.held ? 'suspended' : super.state; }
    resume() {
      if (!touched) return Promise.resolve();
      this.held = false;
      return super.resume().then(() => this.dispatchEvent(new Event('statechange')));
    }
  };
}
// A browser that cannot suspend a wasm stack itself, as Chromium could not before JSPI.
function withoutStackSwitching() {
  delete WebAssembly.Suspending;
  delete WebAssembly.promising;
}
// `setup` runs in the page before its scripts (holdSoundBack, withoutStackSwitching).
async function open(name, setup) {
  const tab = await browser.newPage({ viewport: { width: 1400, height: 1000 } });
  if (setup) await tab.addInitScript(setup);
  tab.on('pageerror', (error) => failures.push(`${name}: page error ${error.message}`));
  await tab.goto(url + name);
  return tab;
}

// The first card, a click to the Transitions card and one on its slow dissolve: the page must
// answer a click of its own while the dissolve runs, and the dissolve must end on its card.
async function answersDuringDissolve(tab) {
  const first = await settlesOn(tab, 0, 'welcome.png');
  await clickCanvas(tab, 0, 390, 330);  // "Transitions"
  await settlesOn(tab, 0, 'transitions.png');
  await clickCanvas(tab, 0, 460, 140);  // "Dissolve (slow)"
  const clicked = Date.now();
  await tab.click('#ping', { timeout: 2000 });
  const answered = Date.now() - clicked;
  const midway = await differences(tab, 0, 'arrived.png');
  // A dissolve never reaches the last few values of its walk: those pixels keep the old card.
  const arrived = await settlesOn(tab, 0, 'arrived.png', 8000, 16);
  return [first === 0 && answered < 1000 && midway > 0 && arrived === 0,
    `first card ${first} pixels off, answered in ${answered} ms, ${midway} pixels still to change, ` +
    `${arrived} at the end`];
}

const CASES = [
  ['the first card is drawn as quillbrook render draws it', 'one.html', async (tab) => {
    const diff = await settlesOn(tab, 0, 'welcome.png');
    return [diff === 0, `${diff} pixels differ`];
  }],
  ['a click on a button goes to its card', 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    await clickCanvas(tab, 0, 250, 330);  // "Button shapes"
    const diff = await settlesOn(tab, 0, 'shapes.png');
    return [diff === 0, `${diff} pixels differ from the Shapes card`];
  }],
  ['after a click gives focus, the right arrow goes to the next card', 'menu.html', async (tab) => {
    await tab.waitForTimeout(1000);
    await clickCanvas(tab, 0, 600, 460);  // no button there
    await tab.keyboard.press('ArrowRight');
    const diff = await settlesOn(tab, 0, 'menu-2.png');
    return [diff === 0, `${diff} pixels differ from the Pictures card`];
  }],
  ['Tab reaches a button, Return presses it, and the live region tells the new card', 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    const before = await tab.locator('.quillbrook-live').textContent();
    await clickCanvas(tab, 0, 600, 460);
    await tab.keyboard.press('Tab');  // the welcome text
    await tab.keyboard.press('Tab');  // "Pictures"
    await tab.keyboard.press('Enter');
    const diff = await settlesOn(tab, 0, 'pictures.png');
    const after = await tab.locator('.quillbrook-live').textContent();
    const role = await tab.locator('canvas').getAttribute('role');
    const ok = diff === 0 && /Card: Welcome/.test(before) && /Buttons: .*Contents.*Next >/.test(after) &&
      /Card: Pictures/.test(after) && role === 'application';
    return [ok, `${diff} pixels differ; live region before ${JSON.stringify(before)}, after ${JSON.stringify(after)}`];
  }],
  ["a button's sound reaches the WebAudio graph sample for sample", 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    // A recorder behind the tap keeps every sample the graph plays.
    await tab.waitForFunction(() => Quillbrook.players[0].module.qbAudioTap);
    await tab.evaluate(() => {
      const module = Quillbrook.players[0].module;
      // Held by the page: Chromium stops a processor node that only the graph holds.
      const recorder = window.recorder = module.qbAudioContext.createScriptProcessor(2048, 2, 2);
      window.heard = [];
      recorder.onaudioprocess = (event) => window.heard.push(...event.inputBuffer.getChannelData(0));
      module.qbAudioTap.connect(recorder);
      recorder.connect(module.qbAudioContext.destination);
    });
    // The welcome chime first dies away, so that what is heard next is the button's click.
    const quiet = await tab.waitForFunction(() => window.heard.length > 8192 &&
      window.heard.slice(-8192).every((sample) => sample === 0), null, { timeout: 8000 }).then(() => true, () => false);
    const from = await tab.evaluate(() => window.heard.length);
    await clickCanvas(tab, 0, 250, 330);  // a button that clicks
    await tab.waitForTimeout(1000);
    const heard = await tab.evaluate((start) => window.heard.slice(start), from);
    // The click is 8-bit: the mixer widens each sample to 16 bits and the graph plays it over 32768.
    const wave = readFileSync(join(demoSource, 'sounds', 'click.wav'));
    const data = wave.indexOf('data') + 8;
    const expected = Array.from(wave.subarray(data, data + wave.readUInt32LE(data - 4)), (byte) => (byte - 128) / 128);
    const start = heard.findIndex((sample) => sample !== 0) - expected.findIndex((sample) => sample !== 0);
    const differing = start < 0 ? expected.length : expected.filter((sample, i) => heard[start + i] !== sample).length;
    return [quiet && differing === 0, `quiet before the click ${quiet}; ${differing} of ${expected.length} samples differ`];
  }],
  ['a stack the card names is fetched beside the stack', 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    await clickCanvas(tab, 0, 390, 380);  // "About"
    await settlesOn(tab, 0, 'about.png');
    await clickCanvas(tab, 0, 320, 400);  // "Start over": demo.stk by a file reference
    const diff = await settlesOn(tab, 0, 'welcome.png');
    const fetched = await tab.evaluate(() =>
      performance.getEntriesByType('resource').filter((entry) => /\/demo\.stk$/.test(entry.name)).length);
    return [diff === 0 && fetched === 2, `${diff} pixels differ from the first card, demo.stk fetched ${fetched} times`];
  }],
  ['the drag-and-drop page plays a picked file, and offers the demo', 'index.html', async (tab) => {
    await tab.setInputFiles('#pick', join(site, 'second.stk'));
    const picked = await settlesOn(tab, 0, 'second.png');
    await tab.click('#demo');
    const demoCard = await settlesOn(tab, 0, 'welcome.png');
    const canvases = await tab.locator('canvas').count();
    // The first player went with its canvas.
    const players = await tab.evaluate(() => Quillbrook.players.length);
    return [picked === 0 && demoCard === 0 && canvases === 1 && players === 1,
      `${picked} ${demoCard} ${canvases} canvases ${players} players`];
  }],
  ['where the browser holds sound back, a click on the offer lets it out', 'one.html', async (tab) => {
    const offer = tab.locator('.quillbrook-audio');
    const offered = await offer.waitFor({ timeout: 8000 }).then(() => true, () => false);
    const heldAtFirst = await tab.evaluate(() => Quillbrook.players[0].module.qbAudioContext.state === 'suspended');
    if (offered) await offer.click();
    const running = await tab.waitForFunction(() =>
      Quillbrook.players[0].module.qbAudioContext.state === 'running', null, { timeout: 3000 }).then(() => true, () => false);
    const gone = await offer.count() === 0;
    return [offered && heldAtFirst && running && gone,
      `offered ${offered}, held ${heldAtFirst}, running ${running}, offer gone ${gone}`];
  }, holdSoundBack],
  ['two embeds play two stacks, each on its own', 'two.html', async (tab) => {
    const first = await settlesOn(tab, 0, 'welcome.png');
    const second = await settlesOn(tab, 1, 'second.png');
    await clickCanvas(tab, 0, 250, 330);
    const moved = await settlesOn(tab, 0, 'shapes.png');
    const stayed = await differences(tab, 1, 'second.png');
    return [first === 0 && second === 0 && moved === 0 && stayed === 0, `${first} ${second} ${moved} ${stayed}`];
  }],
  ['an <object> wrapping an <embed> gives one player', 'object.html', async (tab) => {
    const diff = await settlesOn(tab, 0, 'welcome.png');
    const canvases = await tab.locator('canvas').count();
    return [diff === 0 && canvases === 1, `${canvases} canvases, ${diff} pixels differ`];
  }],
  ['a missing file and a file that is no stack each leave a message', 'errors.html', async (tab) => {
    const messages = tab.locator('.quillbrook-message');
    await messages.nth(1).waitFor({ timeout: 8000 }).catch(() => {});
    const texts = await messages.allTextContents();
    const ok = texts.length === 2 && texts.some((t) => /404/.test(t)) &&
      texts.some((t) => /notastack\.stk is not a Quillbrook stack/.test(t));
    return [ok, JSON.stringify(texts)];
  }],
  ['a damaged stack shows the alert in the canvas and the page lives on', 'damaged.html', async (tab) => {
    await tab.waitForTimeout(1500);
    const drawn = await tab.evaluate(() => {
      const canvas = document.querySelector('canvas');
      if (!canvas) return 0;
      const data = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
      let dark = 0;
      for (let p = 0; p < data.length; p += 4) if (data[p + 3] === 255 && data[p] < 128) ++dark;
      return dark;
    });
    await tab.click('#ping');
    const pinged = await tab.evaluate(() => window.pinged > 0);
    return [drawn > 100 && pinged, `${drawn} dark pixels, page answered: ${pinged}`];
  }],
  ['a stack added to the page later is played', 'later.html', async (tab) => {
    const diff = await settlesOn(tab, 0, 'second.png');
    return [diff === 0, `${diff} pixels differ`];
  }],
  ['the page answers a click during a slow dissolve', 'one.html', answersDuringDissolve],
  ['without stack switching the Asyncify build plays, and the page answers during a dissolve', 'one.html', async (tab) => {
    const [ok, detail] = await answersDuringDissolve(tab);
    const loaded = await tab.evaluate(() => performance.getEntriesByType('resource').map((entry) => entry.name)
      .filter((name) => /\.wasm/.test(name)).map((name) => name.split('/').pop()).join(' '));
    return [ok && /^quillbrook-asyncify\.wasm/.test(loaded), `${detail}; loaded ${loaded}`];
  }, withoutStackSwitching],
  ["the page's clipboard and the player's meet both ways; a refused copy still pastes in the player", 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    // A paste event brings `paste` to the canvas, or the player copies Windows-1252 `copy`, which the
    // page's clipboard takes or refuses; then what the page was given and what the player holds.
    const STEPS = [
      { paste: 'A\r\nB \u00e9', holds: '41 0d 0a 42 20 e9' },
      { copy: [0x78, 0x0d, 0x0a, 0x80], written: 'x\n\u20ac', holds: '78 0d 0a 80' },
      { copy: [0x6f, 0x77, 0x6e], refuse: true, written: 'own', holds: '6f 77 6e' },
      { paste: 'x\n\u20ac', holds: '6f 77 6e' },  // the page's clipboard is behind: the player's own stays
      { paste: 'new', holds: '6e 65 77' }, { paste: '', holds: null },  // copied elsewhere since; no text
    ];
    const wrong = [];
    for (const [i, step] of STEPS.entries()) {
      const written = await tab.evaluate(async (s) => {
        let written = null;
        navigator.clipboard.writeText = (text) => (written = text, s.refuse ? Promise.reject(new Error('no')) : Promise.resolve());
        if (s.paste !== undefined) {
          const data = new DataTransfer();
          data.setData('text/plain', s.paste);
          document.querySelector('canvas').dispatchEvent(new ClipboardEvent('paste', { clipboardData: data }));
        } else {
          Quillbrook.players[0].module.ccall('QbWebCopy', null, ['array'], [[...s.copy, 0]]);
          await new Promise((resolve) => setTimeout(resolve, 0));  // the write's answer comes back
        }
        return written;
      }, step);
      const holds = await clipboardHeld(tab);
      if (holds !== step.holds || written !== (step.written ?? null)) wrong.push(`step ${i}: ${written} ${holds}`);
    }
    return [wrong.length === 0, wrong.join('; ')];
  }],
  // The packed wasm and fonts are what a page fetches; where the server has none, the plain files
  // play alike.
  ['the packed wasm and fonts are fetched, and the plain ones where they are missing', 'one.html', async (tab) => {
    const fetched = () => tab.evaluate(() => performance.getEntriesByType('resource')
      .map((entry) => entry.name.split('/').pop()).filter((name) => /\.(wasm|ttf)/.test(name)).sort().join(' '));
    const packedDiff = await settlesOn(tab, 0, 'welcome.png');
    const packed = await fetched();
    await tab.route('**/*.gz', (route) => route.fulfill({ status: 404, body: '' }));
    await tab.reload();
    const plainDiff = await settlesOn(tab, 0, 'welcome.png');
    const plain = await fetched();
    const faces = ['LiberationSans-Bold.ttf', 'LiberationSans-Regular.ttf'];
    const ok = packedDiff === 0 && plainDiff === 0 &&
      packed === [...faces.map((face) => `${face}.gz`), 'quillbrook.wasm.gz'].join(' ') &&
      plain === [...faces.flatMap((face) => [face, `${face}.gz`]), 'quillbrook.wasm', 'quillbrook.wasm.gz'].join(' ');
    return [ok, `fetched ${packed}, then ${plain}; ${packedDiff} and ${plainDiff} pixels differ`];
  }],
  // Typing, a paste from the page's clipboard (once: its keydown is not handed in besides) and a
  // copy back to it, in the demo's notes field.
  ['a field takes typing, and Ctrl+V and Ctrl+C meet the page\'s clipboard', 'one.html', async (tab) => {
    await settlesOn(tab, 0, 'welcome.png');
    await tab.context().grantPermissions(['clipboard-read', 'clipboard-write']);
    await clickCanvas(tab, 0, 390, 330);  // "Transitions"
    await settlesOn(tab, 0, 'transitions.png');
    await clickCanvas(tab, 0, 555, 450);  // Next: Sprites
    await tab.waitForTimeout(1500);
    await clickCanvas(tab, 0, 555, 450);  // Next: Text
    await settlesOn(tab, 0, 'text.png');
    await clickCanvas(tab, 0, 300, 390);  // below the notes' text: the insertion point at its end
    await tab.keyboard.type(' Hi ');
    await tab.evaluate(() => navigator.clipboard.writeText('caf\u00e9'));
    await tab.keyboard.press('Control+V');
    await tab.waitForTimeout(100);
    await tab.keyboard.press('Control+A');
    await tab.keyboard.press('Control+C');
    await tab.waitForTimeout(100);
    const copied = await tab.evaluate(() => navigator.clipboard.readText());
    const ok = copied.startsWith('Type here.') && copied.endsWith('keeps it in the stack. Hi caf\u00e9');
    return [ok, `the page's clipboard holds ${JSON.stringify(copied.slice(-40))}`];
  }],
];

const only = process.env.QB_WEB_TEST_FILTER;
for (const [name, pageName, run, setup] of CASES) {
  if (only && !name.includes(only)) continue;
  const tab = await open(pageName, setup);
  try {
    const [ok, detail] = await run(tab);
    check(name, ok, detail);
  } catch (error) {
    check(name, false, error.message.split('\n')[0]);
  }
  await tab.close();
}
await browser.close();
server.kill();
console.log(failures.length ? `${failures.length} web player test(s) failed` : 'All web player tests passed');
process.exit(failures.length ? 1 : 0);

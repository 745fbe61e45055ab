// The page's half of the web backend, inside each player's module: the C++ half calls these
// through EM_JS. A player sets Module.qbCanvas (and, optionally, the qbOn* hooks) before the
// module starts; Module.qbFontBase is the URL the font files are fetched from.

// `ptr` holds a band of a frame as the canvas takes it (R, G, B, A bytes): `width` by `rows` pixels
// of the window, from `left`, `top`. The frame's `last` band tells the page that a frame is shown.
Module.qbPresent = function (ptr, width, rows, left, top, windowWidth, windowHeight, last) {
  var canvas = Module.qbCanvas;
  if (!canvas) return;
  if (canvas.width !== windowWidth || canvas.height !== windowHeight) {
    canvas.width = windowWidth;
    canvas.height = windowHeight;
  }
  var context = Module.qbContext || (Module.qbContext = canvas.getContext('2d'));
  var pixels = new Uint8ClampedArray(HEAPU8.buffer, ptr, width * rows * 4);
  context.putImageData(new ImageData(pixels, width, rows), left, top);
  if (!last) return;
  if (!Module.qbPresented) {
    Module.qbPresented = true;
    if (Module.qbAudioPendingRate) qbAfterFrame(qbOpenPendingAudio);
  }
  if (Module.qbOnPresent) Module.qbOnPresent();
};

// A wait of the core: resolves at the deadline, or at once when the page wakes the player (new
// input, a request to give way). A wait of 0 still lets the page run its queued tasks first.
Module.qbWait = function (ms) {
  return new Promise(function (resolve) {
    var timer = 0;
    var done = false;
    function finish() {
      if (done) return;
      done = true;
      if (timer) clearTimeout(timer);
      if (Module.qbWake === finish) Module.qbWake = null;
      resolve();
    }
    Module.qbWake = finish;
    if (ms > 0) {
      timer = setTimeout(finish, ms);
    } else {
      var channel = new MessageChannel();
      channel.port1.onmessage = finish;
      channel.port2.postMessage(0);
    }
  });
};

// The core's waits suspend the wasm on a promise of the page. Where the browser can suspend a
// wasm stack itself (WebAssembly.Suspending and WebAssembly.promising), the module is built
// without Asyncify: the waiting imports suspend on the promise they return, and the entry points
// that may wait answer with a promise. Elsewhere the Asyncify build unwinds the stack at a wait and
// rewinds it when the promise settles.
Module.qbSuspend = function (start) {
  return typeof Asyncify === 'undefined' ? start() : Asyncify.handleAsync(start);
};

// The imports that wait are the Asyncify build's ASYNCIFY_IMPORTS (apps/web/CMakeLists.txt).
var QB_WAITING_IMPORTS = ['QbJsWait', 'QbJsFetchFile', 'QbJsChooseFile'];
var QB_WAITING_EXPORTS = ['QbSetWindow', 'QbDestroyStream', 'QbRun'];

// The instance of `wasm` (a compiled WebAssembly.Module) for emscripten's `imports`, as its
// receiver takes it.
Module.qbInstantiate = function (wasm, imports) {
  if (typeof Asyncify !== 'undefined') return WebAssembly.instantiate(wasm, imports);
  // Emscripten's import spaces may be one object under several names: each function is wrapped once.
  Object.keys(imports).forEach(function (space) {
    QB_WAITING_IMPORTS.forEach(function (name) {
      var fn = imports[space][name];
      if (typeof fn === 'function') imports[space][name] = new WebAssembly.Suspending(fn);
    });
  });
  return WebAssembly.instantiate(wasm, imports).then(function (instance) {
    var exports = Object.assign({}, instance.exports);
    QB_WAITING_EXPORTS.forEach(function (name) {
      exports[name] = WebAssembly.promising(instance.exports[name]);
    });
    return {exports: exports};
  });
};

Module.qbSetTitle = function (title) {
  Module.qbTitle = title;
  if (Module.qbOnTitle) Module.qbOnTitle(title);
};

Module.qbDescribeCard = function (text) {
  if (Module.qbOnCard) Module.qbOnCard(text);
};

Module.qbSetCursor = function (wait) {
  if (Module.qbCanvas) Module.qbCanvas.style.cursor = wait ? 'wait' : 'default';
};

Module.qbMessage = function (title, text) {
  if (Module.qbOnMessage) Module.qbOnMessage(title, text);
  else console.log((title ? title + ': ' : '') + text);
};

// Files fetched on first use and written into this module's memory file system: font files from
// beside the player's script (`base` 0), through the page script's Module.qbFetchFont, which
// downloads each once for every player of the page; and files a streamed stack names beside
// itself, relative to the stack's URL (`base` 1). The file system keeps the download itself rather
// than a copy (`canOwn`): a stack's file is its player's own download, and a font file, in memory
// once for all the page's players, is only ever read.
Module.qbFetchFile = function (path, base, relative) {
  var root = base === 0 ? Module.qbFontBase : Module.qbStackUrl;
  if (!root || !relative) return Promise.resolve(0);
  var url = new URL(relative.split('/').map(encodeURIComponent).join('/'), root).href;
  var download = base === 0 && Module.qbFetchFont ? Module.qbFetchFont(url) : fetch(url).then(function (response) {
    if (!response.ok) throw new Error(url + ': HTTP ' + response.status);
    return response.arrayBuffer();
  });
  return download.then(function (buffer) {
    FS.mkdirTree(path.slice(0, path.lastIndexOf('/')));
    FS.writeFile(path, new Uint8Array(buffer), {canOwn: true});
    return 1;
  }, function (error) {
    if (base === 0) console.warn('quillbrook: ' + error.message);
    return 0;
  });
};

// The host's open dialog is the page's file input: the file picked is copied into memory.
Module.qbChooseFile = function (pattern) {
  return new Promise(function (resolve) {
    var input = document.createElement('input');
    input.type = 'file';
    var extension = /\*(\.\w+)$/.exec(pattern || '');
    if (extension) input.accept = extension[1];
    input.addEventListener('cancel', function () { resolve(''); });
    input.addEventListener('change', function () {
      var file = input.files && input.files[0];
      if (!file) { resolve(''); return; }
      file.arrayBuffer().then(function (buffer) {
        FS.mkdirTree('/chosen');
        var path = '/chosen/' + file.name.replace(/[\/\\]/g, '_');
        FS.writeFile(path, new Uint8Array(buffer));
        resolve(path);
      }, function () { resolve(''); });
    });
    input.click();
  });
};

// Sound: a ScriptProcessor pulls the mix as the graph plays. The graph runs through a tap (an
// AnalyserNode the page may look at) to the speakers. A context the browser holds suspended
// (no gesture yet) is reported, so that the page can offer a click to start it.
Module.qbAudioAvailable = function () {
  return typeof AudioContext !== 'undefined' && !Module.qbNoAudio;
};

// Opening the sound device holds the page up (a sixth of a second in Chromium) and a first card
// often greets with a sound, so the device opens once the next frame is on the screen: the card
// shows at once and its sound begins a moment later, since the mix goes only as the graph pulls
// it. The context is kept whatever rate a later sound asks for; the mixer converts.
Module.qbOpenAudio = function (rate) {
  if (Module.qbAudioContext) {
    try {
      return qbStartGraph(Module.qbAudioContext);
    } catch (error) {
      console.warn('quillbrook: no sound: ' + error.message);
      return 0;
    }
  }
  Module.qbAudioPendingRate = rate;
  if (Module.qbPresented) qbAfterFrame(qbOpenPendingAudio);
  return rate;
};

function qbAfterFrame(then) {
  requestAnimationFrame(function () { setTimeout(then, 0); });
}

function qbOpenPendingAudio() {
  var rate = Module.qbAudioPendingRate;
  if (!rate) return;
  Module.qbAudioPendingRate = 0;
  try {
    qbStartGraph(Module.qbAudioContext = new AudioContext({sampleRate: rate}));
  } catch (error) {
    console.warn('quillbrook: no sound: ' + error.message);
  }
}

// The graph is made once for the context and stays while it lives: a closed device only pulls
// silence (QbWebPullAudio), and the tap the page may be listening at stays the same.
function qbStartGraph(context) {
  if (Module.qbAudioProcessor) return context.sampleRate;
  var processor = Module.qbAudioProcessor = context.createScriptProcessor(2048, 1, 2);
  processor.onaudioprocess = function (event) {
    var out = event.outputBuffer;
    var count = out.length;
    var ptr = Module._QbWebPullAudio(count) >> 1;
    var left = out.getChannelData(0), right = out.getChannelData(1);
    var samples = HEAP16;
    for (var i = 0; i < count; ++i) {
      left[i] = samples[ptr + 2 * i] / 32768;
      right[i] = samples[ptr + 2 * i + 1] / 32768;
    }
  };
  var tap = Module.qbAudioTap = context.createAnalyser();
  tap.fftSize = 2048;
  processor.connect(tap);
  tap.connect(context.destination);
  if (context.state !== 'running') {
    context.resume();
    if (Module.qbOnAudioBlocked) Module.qbOnAudioBlocked(context);
  }
  return context.sampleRate;
}

Module.qbCloseAudio = function () {
  Module.qbAudioPendingRate = 0;
};

// The page's clipboard. The player's copies go to it through navigator.clipboard, which a page
// without a secure origin lacks and a browser may refuse; then the player's own copy is newer than
// what the page's clipboard holds, and a paste keeps it until that clipboard changes.
Module.qbClipboardSeen = null;     // the page's clipboard text at the last paste or copy that reached it
Module.qbClipboardBehind = false;  // a copy of the player's own has not reached it (yet)
Module.qbClipboardCopies = 0;      // an older copy's answer, come late, says nothing

Module.qbWriteClipboard = function (text) {
  var clipboard = typeof navigator !== 'undefined' ? navigator.clipboard : null;
  var copy = ++Module.qbClipboardCopies;
  Module.qbClipboardBehind = true;
  if (!clipboard || !clipboard.writeText) return;
  clipboard.writeText(text).then(function () {
    if (copy !== Module.qbClipboardCopies) return;
    Module.qbClipboardSeen = text;
    Module.qbClipboardBehind = false;
  }, function () {});
};

// A paste on the page: `text` is what its paste event brought ('' for no text), or null when the
// page had no paste event to give. Ctrl+V goes to the player either way.
Module.qbPaste = function (text) {
  var seen = Module.qbClipboardSeen;
  var keepOwn = text === null || (Module.qbClipboardBehind && (seen === null || seen === text));
  if (text !== null) Module.qbClipboardSeen = text;
  if (!keepOwn) Module.qbClipboardBehind = false;
  var ptr = keepOwn ? 0 : allocateUTF8(text);
  Module._QbWebPaste(ptr);
  if (ptr) _free(ptr);
  if (Module.qbWake) Module.qbWake();
};

// quillbrook.js: one script tag brings embedded stacks back. On load, and for every element added
// later, each <object> and <embed> whose type is application/qbrk or whose data/src ends in .stk
// gives way to a player of its size: a canvas with its own module instance, into which the stack
// streams through the plug-in's entry points. The player's files (quillbrook.wasm, the module's
// code in quillbrook-module.js, fonts/) are fetched from beside this script. This script is kept
// small and apart from the module's code so that the wasm's download starts as soon as it is read.
(function () {
  'use strict';
  if (typeof window === 'undefined' || window.Quillbrook) return;

  var STACK_TYPE = 'application/qbrk';
  var script = document.currentScript;
  var scriptBase = new URL('.', script && script.src ? script.src : document.baseURI).href;
  var sharedFiles = new Map();  // font files, fetched once for every player of the page
  // The faces nearly every stack's first card draws with (the system font and its bold, which
  // most named faces fall to): fetched once the wasm is in, while the player starts, rather than
  // when the first card asks (and not alongside the wasm, whose download they would slow).
  var FIRST_FACES = ['liberation2/LiberationSans-Regular.ttf', 'liberation2/LiberationSans-Bold.ttf'];
  // A browser that suspends a wasm stack itself gets the module built without Asyncify, which is
  // smaller and quicker to compile and to run; others get the Asyncify build.
  var SUSPENDS = typeof WebAssembly === 'object' && typeof WebAssembly.Suspending === 'function' &&
      typeof WebAssembly.promising === 'function';
  var WASM = SUSPENDS ? 'quillbrook.wasm' : 'quillbrook-asyncify.wasm';
  var MODULE_SCRIPT = SUSPENDS ? 'quillbrook-module.js' : 'quillbrook-module-asyncify.js';
  var compiledWasm = null;
  var moduleFactory = null;
  var players = [];

  // The steps of a player's start, as marks on the page's timeline (quillbrook:compiled, :ready,
  // :window, :stack, :card), for the page's tools and the benchmark.
  function mark(name) {
    if (typeof performance !== 'undefined' && performance.mark) performance.mark('quillbrook:' + name);
  }

  // Compiled as it downloads where the server names the type; from the whole file elsewhere.
  function compileResponse(response) {
    if (WebAssembly.compileStreaming && /application\/wasm/.test(response.headers.get('Content-Type') || '')) {
      return WebAssembly.compileStreaming(response);
    }
    return response.arrayBuffer().then(function (bytes) { return WebAssembly.compile(bytes); });
  }

  // The wasm and the font files lie beside this script also packed (name.gz, a third to a half of
  // the size), for servers that send files as they are: the browser unpacks the packed file as it
  // arrives, and `use` takes it as a response of `type`. Where the packed file is missing, or the
  // browser cannot unpack it, or the server has already unpacked it on the way, `use` gets the
  // file itself.
  function fetchPacked(url, type, use) {
    function plain() {
      return fetch(url).then(function (response) {
        if (!response.ok) throw new Error(url.split('/').pop() + ': HTTP ' + response.status);
        return use(response);
      });
    }
    if (typeof DecompressionStream !== 'function' || typeof Response !== 'function') return plain();
    return fetch(url + '.gz').then(function (response) {
      if (!response.ok || !response.body) throw new Error(url + '.gz: HTTP ' + response.status);
      return use(new Response(response.body.pipeThrough(new DecompressionStream('gzip')),
          {headers: {'Content-Type': type}}));
    }).catch(plain);
  }

  function compileWasm() {
    if (!compiledWasm) {
      compiledWasm = fetchPacked(scriptBase + WASM, 'application/wasm', compileResponse).then(function (module) {
        mark('compiled');
        return module;
      });
    }
    return compiledWasm;
  }

  // A font file's bytes, fetched once for every player of the page.
  function fetchFont(url) {
    var download = sharedFiles.get(url);
    if (!download) {
      download = fetchPacked(url, 'font/ttf', function (response) { return response.arrayBuffer(); });
      sharedFiles.set(url, download);
    }
    return download;
  }

  // The module's factory (QuillbrookModule), from the script emscripten wrote.
  function loadFactory() {
    if (!moduleFactory) {
      moduleFactory = new Promise(function (resolve, reject) {
        var tag = document.createElement('script');
        tag.src = scriptBase + MODULE_SCRIPT;
        tag.async = true;
        tag.onload = function () { resolve(window.QuillbrookModule); };
        tag.onerror = function () { reject(new Error(MODULE_SCRIPT + ' could not be loaded')); };
        document.head.appendChild(tag);
      });
    }
    return moduleFactory;
  }

  // The downloads WebHost.js's qbFetchFile asks for when the first card wants its faces, begun
  // ahead of it.
  function prefetchFonts() {
    FIRST_FACES.forEach(function (relative) {
      fetchFont(scriptBase + 'fonts/' + relative).catch(function () {});
    });
  }

  function stackUrlOf(element) {
    return element.tagName === 'OBJECT' ? element.getAttribute('data') : element.getAttribute('src');
  }

  function isStackElement(element) {
    var type = (element.getAttribute('type') || '').toLowerCase();
    var url = stackUrlOf(element) || '';
    return type === STACK_TYPE || /\.stk([?#].*)?$/i.test(url);
  }

  function sizeOf(element, name, fallback) {
    var value = parseInt(element.getAttribute(name), 10);
    if (value > 0) return value;
    var box = element.getBoundingClientRect();
    var measured = Math.round(name === 'width' ? box.width : box.height);
    return measured > 0 ? measured : fallback;
  }

  var MODIFIERS = function (event) {
    return (event.shiftKey ? 1 : 0) | (event.ctrlKey ? 2 : 0) | (event.altKey ? 4 : 0);
  };

  // One element's player: its place on the page, its module, and the order of its entry points.
  function Player(element, url) {
    this.url = new URL(url, document.baseURI).href;
    this.width = sizeOf(element, 'width', 640);
    this.height = sizeOf(element, 'height', 480);
    var holder = this.holder = document.createElement('div');
    holder.className = 'quillbrook-player';
    holder.style.cssText = 'display:inline-block;position:relative;width:' + this.width + 'px;height:' +
        this.height + 'px';
    var canvas = this.canvas = document.createElement('canvas');
    canvas.width = this.width;
    canvas.height = this.height;
    canvas.tabIndex = 0;
    canvas.setAttribute('role', 'application');
    canvas.setAttribute('aria-label', 'Quillbrook stack ' + this.url.split('/').pop());
    canvas.style.cssText = 'display:block;outline:none';
    // Made while the player's files download, so that the first card's frame does not wait for it.
    canvas.getContext('2d');
    holder.appendChild(canvas);
    // What the card says, for screen readers: kept up to date by the player, never seen.
    var live = this.live = document.createElement('div');
    live.setAttribute('aria-live', 'polite');
    live.className = 'quillbrook-live';
    live.style.cssText = 'position:absolute;left:-10000px;top:auto;width:1px;height:1px;overflow:hidden';
    holder.appendChild(live);
    holder.quillbrook = this;
    element.parentNode.replaceChild(holder, element);
    this.loop = null;
    this.queue = Promise.resolve();
    // The stack downloads while the player starts; its chunks go in once the player is there.
    this.download = fetch(this.url);
    this.download.catch(function () {});
    this.ready = this.start();
  }

  Player.prototype.showMessage = function (text) {
    var box = document.createElement('div');
    box.className = 'quillbrook-message';
    box.setAttribute('role', 'alert');
    box.style.cssText = 'box-sizing:border-box;width:' + this.width + 'px;height:' + this.height + 'px;' +
        'display:flex;align-items:center;justify-content:center;text-align:center;padding:1em;' +
        'font:14px sans-serif;background:#eee;color:#222;border:1px solid #999';
    box.textContent = text;
    if (this.holder.parentNode) this.holder.parentNode.replaceChild(box, this.holder);
    this.holder = box;
    if (this.module) this.module.qbCanvas = null;
  };

  // An entry point that may wait runs while the main loop is away; the loop starts again after it.
  Player.prototype.call = function (name, argTypes, args) {
    var self = this;
    var run = this.queue.then(function () {
      var module = self.module;
      var stopping = self.loop;
      if (stopping) {
        module._QbRequestYield();
        if (module.qbWake) module.qbWake();
      }
      return Promise.resolve(stopping).then(function () {
        return module.ccall(name, 'number', argTypes, args, {async: true});
      }).then(function (result) {
        self.loop = self.destroyed ? null : Promise.resolve(module.ccall('QbRun', null, [], [], {async: true}));
        return result;
      });
    });
    this.queue = run.catch(function () {});
    return run;
  };

  // The player's element left the page: the loop stops and the instance is destroyed.
  Player.prototype.destroy = function () {
    if (this.destroyed) return;
    this.destroyed = true;
    var self = this;
    this.queue = Promise.all([this.ready, this.queue]).then(function () {
      var module = self.module;
      if (!module) return;
      var stopping = self.loop;
      self.loop = null;
      if (stopping) {
        module._QbRequestYield();
        if (module.qbWake) module.qbWake();
      }
      return Promise.resolve(stopping).then(function () {
        module._QbDestroy();
        module.qbCloseAudio();
        if (module.qbAudioContext) module.qbAudioContext.close();
      });
    });
  };

  Player.prototype.input = function (name, args) {
    var module = this.module;
    if (!module) return;
    module['_' + name].apply(null, args);
    if (module.qbWake) module.qbWake();
  };

  Player.prototype.point = function (event) {
    var box = this.canvas.getBoundingClientRect();
    var x = (event.clientX - box.left) * this.canvas.width / (box.width || 1);
    var y = (event.clientY - box.top) * this.canvas.height / (box.height || 1);
    return [Math.floor(x), Math.floor(y)];
  };

  Player.prototype.listen = function () {
    var self = this, canvas = this.canvas;
    // A click or a key on the player is the gesture browsers wait for before they let sound out.
    function wakeAudio() {
      var context = self.module && self.module.qbAudioContext;
      if (context && context.state === 'suspended') context.resume();
    }
    canvas.addEventListener('mousedown', wakeAudio);
    canvas.addEventListener('keydown', wakeAudio);
    function mouse(kind) {
      return function (event) {
        var button = event.button === 0 ? 1 : event.button === 2 ? 2 : 0;
        if (kind !== 2 && button === 0) return;
        if (kind === 2) button = event.buttons & 1 ? 1 : event.buttons & 2 ? 2 : 0;
        if (kind === 0) canvas.focus();
        var p = self.point(event);
        var clicks = kind === 0 && event.detail >= 2 && event.detail % 2 === 0 ? 2 : 1;
        self.input('QbWebMouse', [kind, p[0], p[1], button, MODIFIERS(event), clicks]);
        if (kind !== 2) event.preventDefault();
      };
    }
    canvas.addEventListener('mousedown', mouse(0));
    canvas.addEventListener('mouseup', mouse(1));
    canvas.addEventListener('mousemove', mouse(2));
    canvas.addEventListener('contextmenu', function (event) { event.preventDefault(); });
    // The paste keys go in with the paste event that follows them, which alone may read the page's
    // clipboard; if none follows, they go in on their own and the player pastes its own copy.
    function isPasteKey(event) {
      return (event.keyCode === 86 && (event.ctrlKey || event.metaKey) && !event.altKey) ||
          (event.keyCode === 45 && event.shiftKey && !event.ctrlKey);
    }
    function paste(text) {
      self.pasteAwaited = false;
      if (self.module) self.module.qbPaste(text);
    }
    canvas.addEventListener('paste', function (event) {
      event.preventDefault();
      paste(event.clipboardData ? event.clipboardData.getData('text/plain') : null);
    });
    canvas.addEventListener('keydown', function (event) {
      if (isPasteKey(event)) {
        self.pasteAwaited = true;
        setTimeout(function () { if (self.pasteAwaited) paste(null); }, 0);
        return;
      }
      self.input('QbWebKey', [1, event.keyCode, MODIFIERS(event)]);
      // Printable characters go in as text; the page keeps its own shortcuts for Ctrl and Alt.
      if (event.key && event.key.length === 1 && !event.ctrlKey && !event.altKey && !event.metaKey) {
        var text = self.module.allocateUTF8(event.key);
        self.input('QbWebText', [text, MODIFIERS(event)]);
        self.module._free(text);
      }
      // The browser keeps its own reload and developer keys.
      if (!event.metaKey && event.keyCode !== 116 && event.keyCode !== 123) event.preventDefault();
    });
    canvas.addEventListener('keyup', function (event) {
      if (!isPasteKey(event)) self.input('QbWebKey', [0, event.keyCode, MODIFIERS(event)]);
    });
    canvas.addEventListener('blur', function () { self.input('QbWebFocusLost', []); });
  };

  Player.prototype.start = function () {
    var self = this;
    return loadFactory().then(function (factory) {
      return factory(self.moduleSettings());
    }).then(function (module) {
      self.module = module;
      mark('ready');
      self.listen();
      var error = module._QbNew(self.width, self.height);
      if (error) throw new Error('NPP_New answered ' + error);
      return self.call('QbSetWindow', [], []);
    }).then(function () {
      mark('window');
      return self.stream();
    }).catch(function (error) {
      self.showMessage('The stack ' + self.url + ' could not be played: ' + error.message);
    });
  };

  // What the player's module is started with: its canvas, where its files come from, and the
  // page's hooks.
  Player.prototype.moduleSettings = function () {
    var self = this;
    var settings = {
      qbCanvas: this.canvas,
      qbFontBase: scriptBase + 'fonts/',
      qbStackUrl: this.url,
      qbFetchFont: fetchFont,
      qbOnMessage: function (title, text) { console.log('quillbrook: ' + title + ': ' + text); },
      qbOnAudioBlocked: function (context) { self.offerAudio(context); },
      qbOnCard: function (text) {
        self.live.textContent = text;
        self.canvas.setAttribute('aria-label', 'Quillbrook stack ' + self.url.split('/').pop() + ': ' +
            text.split('\n')[0]);
      },
      // The first frame after the stream has ended is the first card: the page hears of it.
      qbOnPresent: function () {
        if (!self.opening || self.shown) return;
        self.shown = true;
        mark('card');
        self.canvas.dispatchEvent(new CustomEvent('quillbrook:card', {bubbles: true}));
      },
      instantiateWasm: function (imports, receive) {
        compileWasm().then(function (wasm) {
          return settings.qbInstantiate(wasm, imports).then(function (instance) { receive(instance, wasm); });
        }).catch(function (error) { self.showMessage('The player could not start: ' + error.message); });
        return {};
      },
    };
    return settings;
  };

  // The file arrives chunk by chunk and each goes to NPP_Write as it comes; a file that is no
  // stack, or an HTTP error, never reaches the player.
  Player.prototype.stream = function () {
    var self = this, module = this.module;
    return this.download.then(function (response) {
      if (!response.ok) {
        self.showMessage('The stack ' + self.url + ' could not be loaded (HTTP ' + response.status + ' ' +
            response.statusText + ').');
        return;
      }
      var length = parseInt(response.headers.get('Content-Length'), 10) || 0;
      var reader = response.body.getReader();
      var offset = 0, started = false, head = new Uint8Array(0);
      function write(bytes) {
        var ptr = module._malloc(bytes.length);
        module.HEAPU8.set(bytes, ptr);
        module._QbWrite(offset, bytes.length, ptr);
        module._free(ptr);
        offset += bytes.length;
      }
      function notAStack() {
        self.showMessage(self.url.split('/').pop() + ' is not a Quillbrook stack.');
      }
      function checkHead(chunk, done) {
        var joined = new Uint8Array(head.length + chunk.length);
        joined.set(head);
        joined.set(chunk, head.length);
        head = joined;
        if (head.length < 128 && !done) return true;
        var ptr = module._malloc(head.length);
        module.HEAPU8.set(head, ptr);
        var plausible = module._QbLooksLikeStack(ptr, head.length);
        module._free(ptr);
        if (!plausible) { notAStack(); return false; }
        var url = module.allocateUTF8(self.url);
        var error = module._QbNewStream(url, length);
        module._free(url);
        if (error) throw new Error('NPP_NewStream answered ' + error);
        started = true;
        write(head);
        return true;
      }
      function pump() {
        return reader.read().then(function (part) {
          var chunk = part.value || new Uint8Array(0);
          if (!started) {
            if (!checkHead(chunk, part.done)) return reader.cancel();
          } else if (chunk.length) {
            write(chunk);
          }
          if (part.done) {
            self.opening = true;
            mark('stack');
            return self.call('QbDestroyStream', ['number'], [0]);
          }
          return pump();
        });
      }
      return pump();
    });
  };

  // Browsers hold sound back until the person has touched the page: a click on the overlay
  // starts it.
  Player.prototype.offerAudio = function (context) {
    if (this.audioOverlay || context.state === 'running') return;
    var overlay = this.audioOverlay = document.createElement('button');
    overlay.type = 'button';
    overlay.className = 'quillbrook-audio';
    overlay.textContent = '\u{1F50A} Click for sound';
    overlay.style.cssText = 'position:absolute;right:8px;bottom:8px;font:13px sans-serif;padding:4px 8px';
    var self = this;
    function gone() {
      if (overlay.parentNode) overlay.parentNode.removeChild(overlay);
      self.audioOverlay = null;
    }
    overlay.addEventListener('click', function () { context.resume().then(gone); self.canvas.focus(); });
    context.addEventListener('statechange', function () { if (context.state === 'running') gone(); });
    this.holder.appendChild(overlay);
  };

  // An <object> goes first, so that an <embed> inside it (the old fallback) gives no second player.
  function takeOver(root) {
    var found = [];
    var scope = root.querySelectorAll ? root : document;
    if (root.tagName === 'OBJECT' || root.tagName === 'EMBED') found.push(root);
    Array.prototype.push.apply(found, scope.querySelectorAll('object'));
    Array.prototype.push.apply(found, scope.querySelectorAll('embed'));
    found.forEach(function (element) {
      if (element.quillbrookSeen || !element.parentNode || !isStackElement(element)) return;
      element.quillbrookSeen = true;
      if (element.tagName === 'EMBED' && element.closest('object') && element.closest('object').quillbrookSeen) return;
      players.push(new Player(element, stackUrlOf(element)));
    });
  }

  function watch() {
    takeOver(document);
    new MutationObserver(function (changes) {
      changes.forEach(function (change) {
        change.addedNodes.forEach(function (node) { if (node.nodeType === 1) takeOver(node); });
      });
      // A player taken off the page (not merely moved) ends.
      players.slice().forEach(function (player) {
        if (player.holder.isConnected || player.destroyed || !player.module) return;
        player.destroy();
        players.splice(players.indexOf(player), 1);
      });
    }).observe(document.documentElement, {childList: true, subtree: true});
  }

  window.Quillbrook = {
    players: players,
    // Plays a stack given as bytes (a dropped or picked file) in place of `element`.
    playFile: function (element, file) {
      var url = URL.createObjectURL(file);
      var player = new Player(element, url);
      player.name = file.name;
      players.push(player);
      return player;
    },
    play: function (element, url) {
      var player = new Player(element, url);
      players.push(player);
      return player;
    },
  };
  // The wasm downloads and compiles, then the first faces download, while the rest of the page
  // and the module's code load. The players start once the module's factory is there.
  compileWasm().then(prefetchFonts, prefetchFonts);
  loadFactory();
  if (document.readyState === 'loading') document.addEventListener('DOMContentLoaded', watch);
  else Promise.resolve().then(watch);
})();

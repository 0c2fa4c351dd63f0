// The page around the level: loading, the start panel, the menu, and what keys, mouse and fingers do.

const byId = id => document.getElementById(id);
const level = JSON.parse(byId("level").textContent);
const query = new URLSearchParams(location.search);
const [stage, panel, menu, progress] = ["stage", "panel", "menu", "progress"].map(byId);
const coarse = matchMedia("(pointer: coarse)").matches;
let browser, walker, volume, scene, home;

function say(text) { byId("message").textContent = text; }

function hint(text) {
  byId("hint").textContent = text;
  byId("hint").hidden = !text;
  clearTimeout(hint.timer);
  if (text) hint.timer = setTimeout(() => hint(""), 2500);
}

const painted = () => new Promise(done => requestAnimationFrame(() => setTimeout(done)));

async function advance(to) {
  progress.value = to;
  await painted();
}

function canDraw() {
  return Boolean(document.createElement("canvas").getContext("webgl2"));
}

// -- The scene

async function load() {
  if (!canDraw()) return fail("This browser cannot draw the level: it has no WebGL 2, or it is switched off.");
  if (!window.DecompressionStream) return fail("This browser is too old to unpack the level.");
  await advance(0.1);
  const parts = await unpackParts();
  await advance(0.3);
  provideStorage();
  answerFetches(parts);
  runViewerText(parts.viewer);
  await advance(0.5);
  browser = await makeBrowser(stage, parts.viewer.get("x_ite.css"));
  volume = makeVolume(browser);
  await advance(0.6);
  scene = await browser.createX3DFromString(parts.scene.get("level.x3d"));
  parts.scene.clear();
  useLightShader(browser, scene);
  await advance(0.8);
  await browser.replaceWorld(scene);
  walker = new Walker(browser, level);
  walker.onNoFloor = view => { view.resetUserOffsets(); walker.take(view); setFlying(true); };
  connectLinks();
  listViews();
  goTo(findView(query.get("view")) ?? findView(level.views[0]?.name));
  if (!level.views.length) lookOn();
  await advance(1);
  ready();
}

function fail(text) {
  progress.hidden = true;
  say(text);
}

function ready() {
  progress.hidden = true;
  byId("start").disabled = false;
  byId("start").focus();
  byId("menu-button").hidden = false;
  byId("headlight").checked = walker.info._headlight.getValue();
  watchInput();
  if (query.has("embed")) enter();
  document.documentElement.dataset.state = "ready";
}

// A link of the level is a sensor around what it is on: the page opens it, and only for the web's own protocols.
function connectLinks() {
  for (const [name, address] of Object.entries(level.links))
    scene.getNamedNode(name).addFieldCallback("link", "touchTime", () => {
      if (/^https?:/i.test(address)) window.open(address, "_blank", "noopener,noreferrer");
    });
}

// A level without a start is looked on from outside.
function lookOn() {
  browser.viewAll(walker.layer, 0);
  setFlying(true);
}

// -- Views

const viewOf = name => walker.layer.getViewpoints().get().find(view => view.getName() === name);

function findView(wanted) {
  if (!wanted) return undefined;
  return level.views.find(view => view.name === wanted || view.name === "V_" + wanted)
    ?? level.views.find(view => view.text.toLowerCase() === wanted.toLowerCase());
}

function goTo(view) {
  const node = view && viewOf(view.name);
  if (!node) return walker.wake();
  if (view.kind === "flight") home ??= { node: walker.view, eye: walker.eye, yaw: walker.yaw, pitch: walker.pitch };
  else home = undefined;
  node.resetUserOffsets();
  if (node === walker.view) walker.take(node);
  else node._set_bind = true;
  for (const button of byId("views").querySelectorAll("button"))
    button.setAttribute("aria-current", String(button.dataset.name === view.name));
  walker.wake();
}

// Back from a fly-through to where it was begun.
async function land() {
  if (!home) return;
  const { node, eye, yaw, pitch } = home;
  home = undefined;
  node._set_bind = true;
  await browser.nextFrame();
  walker.take(node);
  node.setUserPosition(walker.vector(...eye));
  Object.assign(walker, { yaw, pitch });
  walker.wake();
}

function listViews() {
  for (const [kind, caption] of [["start", "Starts"], ["camera", "Cameras"], ["exit", "Teleporters"], ["flight", "Fly-through"]]) {
    const views = level.views.filter(view => view.kind === kind && viewOf(view.name));
    if (!views.length) continue;
    const heading = Object.assign(document.createElement("h2"), { textContent: caption });
    byId("views").append(heading, ...views.map(view => {
      const button = Object.assign(document.createElement("button"), { type: "button", textContent: view.text });
      button.dataset.name = view.name;
      button.addEventListener("click", () => { goTo(view); enter(); });
      return button;
    }));
  }
}

// -- In and out of the level

function enter() {
  panel.hidden = true;
  showMenu(false);
  stage.focus();
  volume.context.resume().catch(() => {});
  walker.paused = false;
  walker.wake();
  if (!coarse && !query.has("embed")) lock();
}

async function lock() {
  try {
    await stage.requestPointerLock();
  } catch { /* refused, or not there: a drag looks around instead */ }
}

function leave() {
  walker.keys.clear();
  walker.running = false;
  walker.push = [0, 0];
}

function showMenu(on) {
  menu.hidden = !on;
  byId("menu-button").setAttribute("aria-expanded", String(on));
  if (!on) return;
  leave();
  document.exitPointerLock?.();
  (menu.querySelector("button") ?? menu).focus();
}

function setFlying(on) {
  walker.fly(on);
  byId("fly").checked = on;
  hint(on ? "Flying: F to walk again" : "Walking");
}

// -- Input

function pressKey(event) {
  if (event.ctrlKey || event.altKey || event.metaKey) return;
  const inMenu = menu.contains(event.target) || event.target === byId("menu-button");
  if (event.code === "KeyM") showMenu(menu.hidden);
  else if (event.code === "Escape") showMenu(false);
  else if (inMenu || !panel.hidden) return;
  else if (event.code === "KeyF") event.repeat || setFlying(!walker.flying);
  else if (event.code in keyAxes || event.code === "KeyC" || event.code === "Space") holdKey(event);
  else if (event.key === "Shift") walker.running = true;
  else return;
  event.preventDefault();
  event.stopPropagation();
}

function holdKey(event) {
  if (home && !event.repeat) land();
  walker.keys.add(event.code);
  if (event.code === "Space" && !event.repeat) walker.jump();
  walker.wake();
}

function releaseKey(event) {
  walker.keys.delete(event.code);
  if (event.key === "Shift") walker.running = false;
}

// Uses what the dot is on: the viewer gets a click in the middle of the picture.
function use() {
  const surface = browser.getSurface()[0], box = surface.getBoundingClientRect();
  const at = { clientX: box.left + box.width / 2, clientY: box.top + box.height / 2, button: 0, bubbles: true };
  for (const type of ["mousemove", "mousedown", "mouseup", "click"])
    surface.dispatchEvent(new MouseEvent(type, { ...at, pageX: at.clientX, pageY: at.clientY }));
}

const fingers = new Map();

function pressPointer(event) {
  stage.focus();
  fingers.set(event.pointerId, { x: event.clientX, y: event.clientY, fromX: event.clientX, fromY: event.clientY });
  if (event.pointerType !== "mouse") return stage.setPointerCapture(event.pointerId);
  if (document.pointerLockElement === stage) use();
  else enter();
}

function movePointer(event) {
  if (document.pointerLockElement === stage) return walker.look(event.movementX, event.movementY);
  const finger = fingers.get(event.pointerId);
  if (!finger) return;
  const [dx, dy] = [event.clientX - finger.x, event.clientY - finger.y];
  Object.assign(finger, { x: event.clientX, y: event.clientY });
  if (fingers.size === 1) return walker.look(2 * dx, 2 * dy);
  const [first] = fingers.values();
  walker.push = [(first.x - first.fromX) / 80, (first.fromY - first.y) / 80];
  walker.wake();
}

function releasePointer(event) {
  const finger = fingers.get(event.pointerId);
  fingers.delete(event.pointerId);
  if (fingers.size < 2) walker.push = [0, 0];
  const still = finger && Math.hypot(finger.x - finger.fromX, finger.y - finger.fromY) < 8;
  if (event.pointerType === "touch" && still && !fingers.size) use();
}

function watchInput() {
  // The viewer has ways of its own to walk with the mouse; it sees only what this page hands on.
  for (const type of ["mousedown", "mouseup", "click", "dblclick", "mousewheel", "wheel", "touchstart", "touchmove", "touchend"])
    stage.addEventListener(type, event => event.isTrusted && event.stopPropagation(), { capture: true, passive: true });
  addEventListener("keydown", pressKey, true);
  addEventListener("keyup", releaseKey, true);
  addEventListener("blur", leave);
  stage.addEventListener("pointerdown", pressPointer);
  stage.addEventListener("pointermove", movePointer);
  for (const type of ["pointerup", "pointercancel"]) stage.addEventListener(type, releasePointer);
  document.addEventListener("pointerlockchange", () => {
    const locked = document.pointerLockElement === stage;
    byId("dot").hidden = !locked;
    if (!locked) leave();
  });
}

byId("start").addEventListener("click", enter);
byId("menu-button").addEventListener("click", () => showMenu(menu.hidden));
byId("fly").addEventListener("change", event => setFlying(event.target.checked));
byId("headlight").addEventListener("change", event => { walker.info._headlight = event.target.checked; walker.wake(); });
byId("full-screen").addEventListener("click", () => document.fullscreenElement ? document.exitFullscreen()
  : document.documentElement.requestFullscreen().catch(() => hint("Full screen is not allowed here")));
for (const id of ["sound", "volume"])
  byId(id).addEventListener("input", () => {
    volume.gain.value = byId("sound").checked ? Number(byId("volume").value) : 0;
    volume.context.resume().catch(() => {});
  });

say("");
load().catch(problem => {
  console.error(problem);
  fail("The level could not be shown: " + (problem?.message ?? problem));
});

// Unpacks what the page carries and starts the viewer from it, without asking any server for anything.

// A host that does not exist (RFC 2606): scenes and parts of the viewer have their addresses under it.
const host = "https://level.invalid/";
const nonce = document.currentScript.nonce;

function bytesOf(base64) {
  if (Uint8Array.fromBase64) return Uint8Array.fromBase64(base64);
  const text = atob(base64), bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

function unzip(base64) {
  const stream = new Blob([bytesOf(base64)]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Response(stream).text();
}

// "data:image/png;base64,..." as something that many nodes can share without a copy each.
function blobOf(dataUri) {
  const comma = dataUri.indexOf(",");
  return new Blob([bytesOf(dataUri.slice(comma + 1))], { type: dataUri.slice(5, dataUri.indexOf(";")) });
}

// What the page carries, by kind and then by name: "viewer" and "scene" as text, "image" and "sound" as blobs.
async function unpackParts() {
  const parts = { viewer: new Map(), scene: new Map(), image: new Map(), sound: new Map() };
  await Promise.all([...document.querySelectorAll("script[data-kind]")].map(async element => {
    const { kind, name } = element.dataset, text = element.textContent;
    element.remove();
    parts[kind].set(name, kind === "viewer" || kind === "scene" ? await unzip(text) : blobOf(text));
  }));
  const images = new Map([...parts.image].map(([name, blob]) => [name, URL.createObjectURL(blob)]));
  for (const [name, text] of parts.scene)
    parts.scene.set(name, text.replace(/("|&quot;)(page-\d+\.(?:png|jpg|gif))\1/g, (all, quote, image) => quote + images.get(image) + quote));
  return parts;
}

// The viewer asks for sounds and scenes with fetch(): it gets those that the page carries, and nothing else.
function answerFetches(parts) {
  const answers = new Map([...parts.scene, ...parts.sound].map(([name, body]) => [host + name, body]));
  window.fetch = async request => {
    const address = String(request.url ?? request), body = answers.get(address);
    if (address.startsWith(host + "assets/lib/")) await new Promise(() => {}); // asked for in advance, not needed
    if (body === undefined) throw new TypeError("This page fetches nothing");
    return new Response(body);
  };
}

// Sites may forbid storage to a page in a frame; the viewer keeps its settings there.
function provideStorage() {
  try {
    if (window.localStorage) return;
  } catch { /* forbidden */ }
  Object.defineProperty(window, "localStorage", { value: {} });
}

function addScript(attributes, text = "") {
  const script = Object.assign(document.createElement("script"), { nonce, ...attributes });
  script.textContent = text;
  document.head.append(script);
  return script;
}

// Runs the viewer's text. While it runs it takes its own address from document.currentScript.
function runViewerText(viewer) {
  const isComponent = name => name.startsWith("assets/components/");
  const imports = {};
  for (const [name, text] of viewer)
    if (isComponent(name)) imports[host + name] = "data:text/javascript;charset=utf-8," + encodeURIComponent(text);
  addScript({ type: "importmap" }, JSON.stringify({ imports }));
  const Font = window.FontFace;
  window.FontFace = class { constructor() { return new Font("none", "local(none)"); } }; // those of its own menus
  Object.defineProperty(document, "currentScript", { configurable: true, value: { src: host + "x_ite.min.js" } });
  try {
    addScript({}, viewer.get("x_ite.min.js")).remove();
  } finally {
    delete document.currentScript;
    window.FontFace = Font;
  }
}

// Makes the viewer's element. It links its style sheet and shows itself once that has come, so the link is made another
// element, which the style's text then answers.
async function makeBrowser(stage, style) {
  const create = document.createElement;
  document.createElement = function (name, ...rest) {
    return create.call(this, String(name).toLowerCase() === "link" ? "viewer-style" : name, ...rest);
  };
  const canvas = create.call(document, "x3d-canvas");
  for (const option of ["splashScreen", "notifications", "contextMenu", "timings"])
    canvas.setAttribute(option, "false");
  stage.append(canvas);
  await X3D();
  document.createElement = create;
  const link = canvas.shadowRoot.querySelector("viewer-style");
  const sheet = create.call(document, "style");
  sheet.textContent = style.replace(/url\([^)]*\)/g, "none");
  link.before(sheet);
  link.dispatchEvent(new Event("load"));
  const browser = X3D.getBrowser(canvas);
  browser.baseURL = host;
  return browser;
}

// Sounds go through a volume of their own. Must come before the first sound of a scene.
function makeVolume(browser) {
  const context = browser.getAudioContext(), volume = context.createGain();
  volume.connect(context.destination);
  Object.defineProperty(context, "destination", { value: volume });
  return { context, gain: volume.gain };
}

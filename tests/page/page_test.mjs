// Pages in a real browser: opened from disk, offline, and walked in with the keys that a visitor has.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import http from "node:http";
import os from "node:os";
import path from "node:path";
import { chromium } from "playwright-core";
import { actor, box, map } from "./level.mjs";

const [quarvel, ...names] = process.argv.slice(2);
const samples = path.resolve("../../samples");
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "quarvel-page-tests-"));
const unit = 0.01904761905; // scene units per Unreal unit
const patience = 60000;     // the browser draws in software, on machines that do other things besides

function makePage(level, ...options) {
  const page = path.join(folder, path.basename(level).replace(/\.t3d$/, ".html"));
  execFileSync(quarvel, ["--quiet", "--web", ...options, level, page], { stdio: "inherit" });
  return page;
}

function makeLevel(name, text, textures = folder) {
  fs.writeFileSync(path.join(folder, name), text);
  return makePage(path.join(folder, name), "--textures", textures);
}

const harbour = () => harbour.page ??= makePage(path.join(samples, "harbour.t3d"), "--textures", samples + "/textures",
  "--sounds", samples + "/sounds", "--meshes", samples + "/meshes");

// A floor with a wall to the right of the start, which looks at it from 6 m.
const room = () => room.page ??= makeLevel("room.t3d", map(
  actor("LevelInfo", "LevelInfo0", [0, 0, 0], `Title="</script><script>window.hostile=1</script>&quot;<b>"\nAuthor="<img src=x onerror=hostile=1>"\n`),
  box("Floor", [-1024, -1024, -64], [1024, 1024, 0], "<i>onerror=hostile=1</i>"),
  box("Wall", [320, -1024, 0], [384, 1024, 256]),
  actor("PlayerStart", "PlayerStart0", [0, 0, 300]),
  actor("PlayerStart", "PlayerStart1", [-512, 0, 40], "Rotation=(Yaw=16384)\n")));

// -- A page, and what a visitor does in it

class Visit {
  constructor(context, page, messages, requests) { Object.assign(this, { context, page, messages, requests }); }

  // Reads something of the viewer's; `b` is its browser.
  see(code) { return this.page.evaluate(`(() => { const b = X3D.getBrowser(); return ${code}; })()`); }
  eye() { return this.see("[...b.getActiveViewpoint().getUserPosition()]"); }
  view() { return this.see("b.getActiveViewpoint().getName()"); }

  // Waits until `test` holds of what `look` gives.
  async until(look, test, what) {
    let seen;
    for (const end = Date.now() + patience; Date.now() < end; await this.page.waitForTimeout(100)) {
      seen = await look();
      if (test(seen)) return seen;
    }
    assert.fail(`${what}: last seen ${JSON.stringify(seen)}`);
  }

  // The mean red of 8 x 6 parts of the picture, row by row.
  async picture() {
    const png = (await this.page.screenshot()).toString("base64");
    return this.page.evaluate(async png => {
      const bytes = Uint8Array.from(atob(png), c => c.charCodeAt(0)), canvas = new OffscreenCanvas(8, 6), pen = canvas.getContext("2d");
      pen.imageSmoothingQuality = "high";
      pen.drawImage(await createImageBitmap(new Blob([bytes])), 0, 0, 8, 6);
      return [...pen.getImageData(0, 0, 8, 6).data].filter((value, i) => i % 4 === 0);
    }, png);
  }

  // Waits until the visitor neither falls nor walks.
  async rest() {
    let last = [];
    return this.until(() => this.eye(), eye => {
      const still = last.length >= 5 && last.every(was => Math.hypot(...was.map((v, i) => v - eye[i])) < 1e-3);
      last = [...last, eye].slice(-5);
      return still;
    }, "comes to rest");
  }

  async place(position, yaw = 0) {
    await this.see(`{ const v = b.getActiveViewpoint(), p = v.getUserPosition(), R = v.getUserOrientation().constructor;
      v.setUserOrientation(new R(0, 1, 0, ${yaw})); v.setUserPosition(new p.constructor(${position}));
      return 0; }`.replace(/^\{/, "(() => {") + ")()");
  }

  async enter() {
    await this.page.click("#start");
    await this.until(() => this.page.isHidden("#panel"), Boolean, "the panel goes");
  }
}

async function visit(file, run, query = "", device = {}) {
  const context = await browser.newContext({ viewport: { width: 200, height: 150 }, offline: true, ...device });
  const page = await context.newPage(), messages = [], requests = [];
  page.on("console", message => message.type() === "error" && messages.push(message.text()));
  page.on("pageerror", error => messages.push("uncaught: " + error.message));
  page.on("request", request => /^(file|data|blob):/.test(request.url()) || requests.push(request.url()));
  page.setDefaultTimeout(patience);
  try {
    await page.goto("file://" + file + query);
    await page.waitForSelector("html[data-state=ready]", { state: "attached" });
    await run(new Visit(context, page, messages, requests));
    assert.deepEqual(messages, [], "no error in the console");
    assert.deepEqual(requests, [], "no request to a server");
  } finally {
    await context.close();
  }
}

// -- Tests

const tests = {
  "opens from disk without a network, in front of the first start": () => visit(harbour(), async v => {
    assert.equal(await v.view(), "V_PlayerStart0");
    assert.match(await v.page.textContent("h1"), /Harbourmaster/);
    await v.until(() => v.see("b.getCurrentViewer()"), mode => mode === "WALK", "is on foot");
    assert.ok((fs.statSync(harbour()).size) < 2e6);
  }),

  "textures and inlined scenes are there": () => visit(harbour(), async v => {
    const loaded = await v.see(`(() => { const scene = b.currentScene, state = name => scene.getNamedNode(name).getValue().checkLoadState();
      return [state("IT_quay"), state("IT_grating"), state("SkyZoneInfo0World"), X3D.X3DConstants.COMPLETE_STATE]; })()`);
    assert.deepEqual(loaded.slice(0, 3), Array(3).fill(loaded[3]));
  }),

  "hostile texts stay texts": () => visit(room(), async v => {
    assert.equal(await v.page.evaluate("window.hostile"), undefined);
    assert.match(await v.page.textContent("h1"), /script/);
    assert.equal(await v.page.evaluate("document.querySelectorAll('h1 *, img').length"), 0);
    const html = fs.readFileSync(room(), "utf8");
    assert.ok(!html.includes("<i>onerror") && !html.includes("<script>window"));
  }),

  "the page's policy lets no frame, script or request out": () => visit(room(), async v => {
    let asked = 0;
    const server = http.createServer((request, answer) => { ++asked; answer.end(); }).listen(0, "127.0.0.1");
    await v.context.setOffline(false);
    const outcome = await v.page.evaluate(async address => {
      const add = (name, attributes) => document.body.append(Object.assign(document.createElement(name), attributes));
      add("iframe", { src: address });
      add("img", { src: address });
      add("script", { textContent: "window.ran = 1" });
      const form = Object.assign(document.createElement("form"), { action: address });
      document.body.append(form);
      form.submit();
      await new Promise(done => {
        const request = Object.assign(new XMLHttpRequest(), { onerror: done, onload: done });
        request.open("GET", address);
        request.send();
      });
      navigator.sendBeacon(address);
      await new Promise(done => setTimeout(done, 500));
      return window.ran;
    }, `http://127.0.0.1:${server.address().port}/`);
    server.close();
    assert.equal(outcome, undefined);
    assert.equal(asked, 0);
    v.messages.length = v.requests.length = 0; // each refusal is one
  }),

  "light maps are drawn as the viewer draws them, but faster": () => {
    const page = makeLevel("lamp.t3d", map(
      box("Floor", [-512, -512, -64], [512, 512, 0]),
      box("Wall", [320, -512, 0], [384, 512, 256]),
      actor("Light", "Lamp", [250, -40, 120], "LightBrightness=90\nLightRadius=12\n"),
      actor("PlayerStart", "PlayerStart0", [0, 0, 40])), samples + "/textures");
    return visit(page, async v => {
      const shapes = "(() => { const all = []; const visit = n => n.getNodeTypeName() === 'Shape' ? all.push(n) : [...n.children ?? []].forEach(visit);"
        + " [...b.currentScene.rootNodes].forEach(visit); return all.filter(s => s.appearance.shaders.length); })()";
      await v.until(() => v.see(`${shapes}.map(s => s.appearance.shaders[0].isValid).join()`), all => /^true(,true)*$/.test(all), "the shader runs");
      const seen = await v.picture();
      await v.see(`${shapes}.forEach(s => s.appearance.shaders = new X3D.MFNode())`);
      await v.page.waitForTimeout(1500);
      const viewers = await v.picture();
      assert.ok(Math.max(...seen) - Math.min(...seen) > 40, "light and shade: " + seen);
      seen.forEach((red, i) => assert.ok(Math.abs(red - viewers[i]) <= 3, `${seen} is not ${viewers}`));
    }, "?embed");
  },

  "gravity sets the visitor on the floor": () => visit(room(), async v => {
    await v.enter();
    const [x, y] = await v.rest();
    assert.ok(Math.abs(x) < 0.01);
    assert.ok(Math.abs(y - 1.6) < 0.05, `eyes 1.6 m up, not ${y}`);
  }),

  "W walks ahead and a wall stops": () => visit(room(), async v => {
    await v.enter();
    const [x] = await v.rest();
    await v.page.keyboard.down("w");
    await v.until(() => v.eye(), eye => eye[0] > x + 1, "walks ahead");
    await v.until(() => v.eye(), eye => eye[0] > 320 * unit - 1, "comes to the wall");
    await v.page.waitForTimeout(1500);
    await v.page.keyboard.up("w");
    const [there, y] = await v.rest();
    assert.ok(there < 320 * unit - 0.3, `stops before the wall, not at ${there}`);
    assert.ok(Math.abs(y - 1.6) < 0.05);
  }),

  "Space jumps and F flies through walls": () => visit(room(), async v => {
    await v.enter();
    await v.rest();
    let top = 0;
    for (let attempt = 0; attempt < 5 && top < 1.8; ++attempt) {
      await v.page.keyboard.press("Space");
      for (const end = Date.now() + 1500; Date.now() < end;) top = Math.max(top, (await v.eye())[1]);
    }
    assert.ok(top > 1.8 && top < 1.6 + 1.5, `leaps up to ${top}`);
    await v.rest();
    await v.page.keyboard.press("f");
    await v.page.keyboard.down("w");
    await v.until(() => v.eye(), eye => eye[0] > 400 * unit, "flies through the wall");
    await v.page.keyboard.up("w");
  }),

  "the mouse looks around, without a roll": () => visit(room(), async v => {
    await v.enter();
    const turned = () => v.see("[...b.getActiveViewpoint().getUserOrientation().multVecRot(new (b.getActiveViewpoint().getUserPosition().constructor)(1, 0, 0))]");
    const before = await turned();
    await v.page.mouse.move(100, 75);
    await v.page.mouse.down();
    await v.page.mouse.move(150, 95, { steps: 4 });
    await v.page.mouse.up();
    const after = await v.until(turned, right => Math.hypot(...right.map((n, i) => n - before[i])) > 0.05, "turns");
    assert.ok(Math.abs(after[1]) < 1e-6, "the right hand stays level");
  }),

  "one finger looks, two walk": () => visit(room(), async v => {
    await v.page.tap("#start");
    await v.until(() => v.page.isHidden("#panel"), Boolean, "the panel goes");
    const [x] = await v.rest();
    const fingers = await v.context.newCDPSession(v.page);
    const touch = (type, ...touchPoints) => fingers.send("Input.dispatchTouchEvent", { type, touchPoints: touchPoints.map(([x, y], id) => ({ x, y, id })) });
    const yaw = () => v.see("b.getActiveViewpoint().getUserOrientation().angle");
    const before = await yaw();
    await touch("touchStart", [60, 75]);
    await touch("touchMove", [90, 75]);
    await touch("touchEnd");
    await v.until(yaw, angle => Math.abs(angle - before) > 0.05, "turns");
    await v.place([0, 1.6, 0], -Math.PI / 2);
    await touch("touchStart", [60, 100], [140, 100]);
    await touch("touchMove", [60, 40], [140, 40]);
    await v.until(() => v.eye(), eye => eye[0] > x + 1, "walks ahead");
    await touch("touchEnd");
    const stopped = await v.rest();
    assert.ok(stopped[0] < 320 * unit - 0.3);
  }, "", { hasTouch: true, isMobile: true }),

  "the fly-through ends where it was begun, full screen comes and goes, Escape closes the menu": () => visit(harbour(), async v => {
    await v.enter();
    const begun = await v.rest(), name = await v.view();
    await v.page.keyboard.press("m");
    await v.page.click("#full-screen");
    await v.until(() => v.page.evaluate("document.fullscreenElement !== null"), Boolean, "full screen");
    await v.page.click("#full-screen");
    await v.until(() => v.page.evaluate("document.fullscreenElement === null"), Boolean, "full screen ends");
    await v.page.keyboard.press("Escape");
    assert.ok(await v.page.isHidden("#menu"));
    await v.page.keyboard.press("m");
    await v.page.locator("#views button[data-name=V_FlyThru]").click();
    await v.until(() => v.see("b.getCurrentViewer()"), mode => mode === "FLY", "is carried along");
    await v.page.keyboard.press("w");
    await v.until(() => v.view(), now => now === name, "is back");
    const back = await v.rest();
    assert.ok(Math.hypot(...back.map((n, i) => n - begun[i])) < 1, `${back} is not ${begun}`);
  }),

  "the menu's viewpoints bind, by keyboard too": () => visit(harbour(), async v => {
    await v.page.keyboard.press("m");
    const buttons = v.page.locator("#views button");
    assert.ok(await buttons.count() >= 5);
    await buttons.filter({ hasText: "Forge" }).click();
    await v.until(() => v.view(), name => name === "V_PlayerStart3", "binds what was clicked");
    await v.page.keyboard.press("m");
    await v.page.locator("#views button").nth(1).focus();
    await v.page.keyboard.press("Enter");
    await v.until(() => v.view(), name => name === "V_PlayerStart1", "binds what was chosen by key");
  }),

  "an address names the view, and a frame has no panel": () => visit(harbour(), async v => {
    await v.until(() => v.view(), name => name === "V_PlayerStart4", "starts there");
    await v.until(() => v.page.isHidden("#panel"), Boolean, "no panel");
  }, "?view=PlayerStart4&embed"),

  "walking into its trigger raises the lift": () => visit(harbour(), async v => {
    await v.enter();
    // The trigger starts the timer of the mover that it is for.
    const mover = await v.see(`[...b.currentScene.routes].find(route => route.sourceNode.getNodeName() === "Trigger0")
      .destinationNode.getNodeName().replace(/TIMER$/, "")`);
    const lift = () => v.see(`b.currentScene.getNamedNode("${mover}").translation.y`);
    await v.place([-6.1, 1.6, -8.2]);
    const before = await lift();
    await v.page.keyboard.down("w");
    await v.until(lift, y => y > before + 1, "the lift rises");
    await v.page.keyboard.up("w");
  }),

  "a teleporter teleports": () => visit(harbour(), async v => {
    await v.enter();
    await v.place([-18.85, 1.6, -13.67], Math.PI / 4);
    await v.page.keyboard.down("w");
    await v.until(() => v.view(), name => name === "V_Teleporter1", "arrives at the other end");
    await v.page.keyboard.up("w");
  }),
};

const browser = await chromium.launch({ executablePath: process.env.CHROMIUM, headless: true,
  args: ["--no-sandbox", "--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--ignore-gpu-blocklist", "--mute-audio"] });
let failed = 0, run = 0;
for (const [title, test] of Object.entries(tests)) {
  if (names.length && !names.some(name => title.includes(name))) continue;
  ++run;
  const begin = Date.now();
  try {
    await test();
    console.log(`[ OK   ] ${title} (${Date.now() - begin} ms)`);
  } catch (error) {
    ++failed;
    console.log(`[ FAIL ] ${title} (${Date.now() - begin} ms)\n${error.stack ?? error}`);
  }
}
await browser.close();
fs.rmSync(folder, { recursive: true, force: true });
console.log(`Page tests: ${run - failed} of ${run} passed`);
process.exit(failed || !run ? 1 : 0);

// Walking: keys, mouse and fingers move the viewpoint that is bound. Collision, gravity and steps are the viewer's.

const turnPerPixel = 0.0022, steepest = 1.55; // radians
const runFactor = 1.9, flyFactor = 1.6;
const longestStep = 0.06; // seconds; longer ones could lead past a thin sensor
const quickness = 12;          // 1/s: how fast speed and the eye's height follow
const longestFall = 4;         // seconds; then there is no floor below
const jumpHeight = 64, unrealGravity = 950; // Unreal units, and per second squared
const keyAxes = { KeyW: [0, 1], ArrowUp: [0, 1], KeyS: [0, -1], ArrowDown: [0, -1], KeyA: [-1, 0], ArrowLeft: [-1, 0],
  KeyD: [1, 0], ArrowRight: [1, 0] };

class Walker {
  constructor(browser, level) {
    this.browser = browser;
    this.unit = level.unit;
    this.keys = new Set();
    this.push = [0, 0]; // what fingers add to the keys: right, ahead
    this.speed = [0, 0, 0];
    this.flying = false;
    this.last = performance.now();
    browser.setBrowserOption("Gravity", unrealGravity * this.unit);
    browser.prepareEvents().addFieldCallback("walk", () => this.step());
  }

  get layer() { return this.browser.getActiveLayer(); }
  get view() { return this.browser.getActiveViewpoint(); }
  get info() { return this.layer.getNavigationInfo(); }
  get eye() { return [...this.view.getUserPosition()]; }

  // A viewpoint that something else moves, as on a fly-through.
  get carried() { return this.browser.getCurrentViewer() === "FLY"; }

  wake() { this.browser.addBrowserEvent(); }

  // Takes over a viewpoint that has just been bound.
  take(view) {
    this.bound = view;
    this.readAngles(view);
    this.speed = [0, 0, 0];
    this.lag = 0;
    this.height = undefined;
    this.safe = undefined;
    this.fallen = 0;
    this.info._transitionType = new X3D.MFString("TELEPORT");
    if (!this.carried) this.browser._viewer = this.flying ? "NONE" : "WALK";
  }

  readAngles(view) {
    const [x, y, z] = view.getUserOrientation().multVecRot(this.vector(0, 0, -1));
    this.yaw = Math.hypot(x, z) > 1e-6 ? Math.atan2(-x, -z) : 0;
    this.pitch = Math.asin(Math.min(1, Math.max(-1, y)));
    this.moved = true;
  }

  // True when something else has turned the viewpoint since this walker did.
  turnedByOthers(view) {
    return !this.moved && [...view.getUserOrientation()].some((value, i) => Math.abs(value - this.turned[i]) > 1e-6);
  }

  fly(on) {
    this.flying = on;
    this.height = undefined;
    this.lag = 0;
    if (!this.carried) this.browser._viewer = on ? "NONE" : "WALK";
    this.wake();
  }

  look(right, down) {
    this.yaw -= right * turnPerPixel;
    this.pitch = Math.min(steepest, Math.max(-steepest, this.pitch - down * turnPerPixel));
    this.moved = true;
    this.wake();
  }

  jump() {
    if (this.flying || this.carried || !this.onGround) return;
    this.leaps = true;
    this.wake();
  }

  vector(x, y, z) {
    const position = this.view.getUserPosition();
    return new position.constructor(x, y, z);
  }

  // Where the keys point, at most 1 long: right, ahead.
  wish() {
    let [right, ahead] = this.push;
    for (const key of this.keys) {
      right += keyAxes[key]?.[0] ?? 0;
      ahead += keyAxes[key]?.[1] ?? 0;
    }
    const length = Math.max(1, Math.hypot(right, ahead));
    return [right / length, ahead / length];
  }

  // The speed to reach, in scene units a second.
  wantedSpeed() {
    const [right, ahead] = this.wish();
    const top = this.info._speed.getValue() * (this.running ? runFactor : 1) * (this.flying ? flyFactor : 1);
    const level = this.flying ? Math.cos(this.pitch) : 1;
    const rise = this.flying ? Math.sin(this.pitch) * ahead + this.keys.has("Space") - this.keys.has("KeyC") : 0;
    return [top * (right * Math.cos(this.yaw) - ahead * Math.sin(this.yaw) * level), top * rise,
      top * (-right * Math.sin(this.yaw) - ahead * Math.cos(this.yaw) * level)];
  }

  // One frame, before the viewer reckons its own part.
  step() {
    const now = performance.now(), seconds = Math.min((now - this.last) / 1000, longestStep);
    this.last = now;
    const view = this.view;
    if (!view || !this.layer) return;
    if (view !== this.bound) this.take(view);
    if (this.carried || this.paused) return;
    if (this.turnedByOthers(view)) this.readAngles(view);
    const wanted = this.wantedSpeed(), follow = 1 - Math.exp(-quickness * seconds);
    this.speed = this.speed.map((was, axis) => was + (wanted[axis] - was) * follow);
    if (Math.hypot(...this.speed) < 0.01) this.speed = [0, 0, 0];
    if (this.moved) this.turn(view);
    if (this.flying) this.glide(view, seconds);
    else this.stride(view, seconds);
    if (Math.hypot(...this.speed, ...wanted) > 0 || this.lag > 0) this.wake();
  }

  // Yaw about the upright, then pitch; never a roll.
  turn(view) {
    const [cy, sy, cp, sp] = [Math.cos(this.yaw / 2), Math.sin(this.yaw / 2), Math.cos(this.pitch / 2), Math.sin(this.pitch / 2)];
    const [w, x, y, z] = [cy * cp, cy * sp, sy * cp, -sy * sp];
    const Rotation = view.getUserOrientation().constructor, sine = Math.hypot(x, y, z);
    view.setUserOrientation(sine < 1e-9 ? new Rotation(0, 0, 1, 0)
      : new Rotation(x / sine, y / sine, z / sine, 2 * Math.atan2(sine, w)));
    this.turned = [...view.getUserOrientation()];
    this.moved = false;
  }

  glide(view, seconds) {
    const [x, y, z] = this.eye, [sx, sy, sz] = this.speed;
    view.setUserPosition(this.vector(x + sx * seconds, y + sy * seconds, z + sz * seconds));
  }

  stride(view, seconds) {
    let [x, y, z] = this.eye;
    y = this.settle(y, seconds);
    if (this.lost(seconds)) return this.rescue(view);
    if (this.onGround) this.safe = [x, y, z];
    view.setUserPosition(this.vector(x, y, z));
    if (this.speed[0] || this.speed[2]) {
      const way = this.vector(this.speed[0] * seconds, 0, this.speed[2] * seconds);
      const [dx, , dz] = this.layer.constrainTranslation(way);
      x += dx;
      z += dz;
    }
    y += this.rise();
    this.height = y;
    view.setUserPosition(this.vector(x, y - this.lag, z));
  }

  // True for who falls out of the level.
  lost(seconds) {
    this.fallen = this.layer.speed < 0 ? this.fallen + seconds : 0;
    return this.fallen > longestFall;
  }

  // Back to where there was a floor; who never had one flies.
  rescue(view) {
    this.fallen = 0;
    this.height = undefined;
    this.layer.speed = 0;
    if (this.safe) view.setUserPosition(this.vector(...this.safe));
    else this.onNoFloor?.(view);
    this.wake();
  }

  // The height at which the visitor stands. The viewer lifts the eye onto a step in one frame; what it lifted lags and
  // is caught up with little by little.
  settle(seen, seconds) {
    const layer = this.layer, lifted = this.lag > 0.01;
    const y = lifted ? seen : seen + this.lag;
    const up = this.height === undefined ? 0 : y - this.height;
    this.onGround = layer.speed === 0 && Math.abs(up) < 1e-3 || up > 0.01;
    this.lag = layer.speed > 0 ? 0 : lifted ? this.lag : 0;
    if (up > 0.01 && layer.speed === 0) this.lag = Math.min(this.lag + up, 0.6 * this.info.getStepHeight());
    this.lag *= Math.exp(-quickness * seconds);
    if (this.lag <= 0.011) this.lag = 0;
    return y;
  }

  // Starts a leap, and ends it under a ceiling. The viewer's gravity does the rest.
  rise() {
    const layer = this.layer;
    if (this.leaps) {
      this.leaps = false;
      this.lag = 0;
      // The viewer takes a frame's fall off before it moves: half of one more makes the leap as high at any frame rate.
      const fall = unrealGravity * this.unit / Math.max(1, this.browser.getCurrentFrameRate());
      layer.speed = Math.sqrt(2 * unrealGravity * jumpHeight) * this.unit + fall / 2;
      this.wake();
      return this.headroom() > 0.03 ? 0.02 : 0;
    }
    if (layer.speed > 0) {
      if (this.headroom() < Math.max(0.02, layer.speed * 0.05)) layer.speed = -1e-3;
      this.wake();
    }
    return 0;
  }

  // The way up that is free above the eye. The viewer looks for walls down to the knees, which lie level when one looks
  // up; for this question a visitor has no height.
  headroom() {
    const info = this.info, height = info.getAvatarHeight;
    info.getAvatarHeight = () => info.getStepHeight();
    const found = this.layer.getClosestObject(this.vector(0, 1, 0));
    info.getAvatarHeight = height;
    return found.id < 0 ? Infinity : found.distance - info.getCollisionRadius();
  }
}

"""Levels as the editor exports them: T3D text with CR LF, every default left out."""

from collections import Counter

from .solids import middle, sub


def number(value):
    return "%.6f" % (value + 0.0)


def parts(value, labels, form=number):
    """(X=1.000000,Z=2.000000): the parts that are not zero."""
    return "(" + ",".join(f"{label}={form(part)}" for label, part in zip(labels, value) if part) + ")"


def vector(value):
    return parts(value, "XYZ")


def rotator(value):
    """Of (pitch, yaw, roll) in 65536ths of a turn."""
    return parts(value, ("Pitch", "Yaw", "Roll"), str)


def colour(red, green, blue):
    return parts((red, green, blue), "RGB", str)


def scale(factors=(1, 1, 1), sheer=0):
    inner = ["Scale=(" + ",".join(f"{l}={number(f)}" for l, f in zip("XYZ", factors) if f != 1) + ")"]
    inner = inner if tuple(factors) != (1, 1, 1) else []
    inner += ["SheerRate=" + number(sheer)] if sheer else []
    return "(" + ",".join(inner + ["SheerAxis=SHEER_ZX"]) + ")"


def triple(value):
    # The sum turns a negative zero into a plain one.
    return ",".join("%+013.6f" % (round(part, 6) + 0.0) for part in value)


def quoted(text):
    return '"' + text + '"'


class Level:
    """Collects actors. Properties are (key, text) pairs and stand in the order given, around those every actor has."""

    def __init__(self, prefix="", volume=""):
        self.prefix = prefix  # the package that newer exports put before class names
        self.volume = volume  # the text of the key that only newer exports have
        self.lines = []
        self.count = Counter()
        self.zone = "LevelInfo"
        self.zone_number = 1

    def text(self):
        return "\r\n".join(["Begin Map"] + self.lines + ["End Map", ""])

    def in_zone(self, zone, zone_number):
        """Actors that follow stand in this zone."""
        self.zone, self.zone_number = zone, zone_number

    def actor(self, kind, *properties, tag=None, event=None, at=(0, 0, 0), turned=(0, 0, 0), late=()):
        """Adds an actor; late properties follow its placement. Returns its name."""
        name = self._open(kind, properties)
        self._place(kind, tag, event, at, turned)
        self._close(late, name)
        return name

    def scene_manager(self, actions, at):
        """Adds a scene manager that moves the camera; actions are lists of (key, text) pairs."""
        name = self._open("SceneManager", [])
        references = []
        for keys in actions:
            action = "ActionMoveCamera%d" % self.count["ActionMoveCamera"]
            self.count["ActionMoveCamera"] += 1
            self.lines.append("     Begin Object Class=ActionMoveCamera Name=" + action)
            self.lines += [f"         {key}={text}" for key, text in [*keys, ("Name", quoted(action))]]
            self.lines.append("     End Object")
            references.append(f"ActionMoveCamera'{self._owned(action)}'")
        self._write([(f"Actions({index})", reference) for index, reference in enumerate(references)])
        self._place("SceneManager", None, None, at, (0, 0, 0))
        self._close([], name)

    def brush(
        self,
        polygons,
        *properties,
        kind="Brush",
        csg="CSG_Add",
        at=None,
        turned=(0, 0, 0),
        pivot=(0, 0, 0),
        main=None,
        post=None,
        flags=0,
        tag=None,
    ):
        """Adds a brush or mover. Without a place, the polygons are where they stand in the level, and their middle
        becomes the brush's location."""
        if at is None:
            corners = [point for polygon in polygons for point in polygon.points]
            at = tuple(round(c) for c in middle([tuple(map(min, zip(*corners))), tuple(map(max, zip(*corners)))]))
            origin, shift = at, tuple(-c for c in at)
        else:
            origin, shift = (0, 0, 0), sub(pivot, at)
        scales = [("MainScale", main or scale()), ("PostScale", post or scale())]
        scales += [("PolyFlags", str(flags))] if flags else []
        csg_lines = [("CsgOper", csg)] if csg and kind == "Brush" else []
        name = self._open(kind, csg_lines + list(properties) + scales)
        self._place(kind, tag, None, at, turned)
        model = "Model%d" % self.count["Model"]
        self.count["Model"] += 1
        self._poly_list(polygons, model, origin, shift)
        last = [("Brush", f"Model'{self._owned(model)}'")] + ([("PrePivot", vector(pivot))] if any(pivot) else [])
        self._close(last, name)
        return name

    def _owned(self, name):
        return "MyLevel." + name

    def _open(self, kind, properties):
        name = kind + str(self.count[kind])
        self.count[kind] += 1
        self.lines.append(f"Begin Actor Class={self.prefix}{kind} Name={name}")
        self._write(properties)
        return name

    def _place(self, kind, tag, event, at, turned):
        leaf = "-1" if kind == "LevelInfo" else str(self.count["leaf"])
        self.count["leaf"] += 1
        number_text = ",ZoneNumber=%d" % self.zone_number if kind != "LevelInfo" else ""
        self._write([("Level", f"LevelInfo'{self._owned('LevelInfo0')}'"), ("Tag", quoted(tag or kind))])
        if event:
            self._write([("Event", quoted(event))])
        self._write([("Region", f"(Zone={self.zone}'{self._owned(self.zone + '0')}',iLeaf={leaf}{number_text})")])
        if self.volume:
            self._write([("PhysicsVolume", self.volume)])
        if any(at):
            self._write([("Location", vector(at))])
        if any(turned):
            self._write([("Rotation", rotator(turned))])

    def _close(self, properties, name):
        self._write(list(properties) + [("Name", quoted(name))])
        self.lines.append("End Actor")

    def _write(self, properties):
        self.lines += [f"     {key}={text}" for key, text in properties]

    def _poly_list(self, polygons, model, origin, world_origin):
        self.lines += ["    Begin Brush Name=" + model, "       Begin PolyList"]
        for link, polygon in enumerate(polygons):
            self._polygon(polygon, link, origin, world_origin)
        self.lines += ["       End PolyList", "    End Brush"]

    def _polygon(self, polygon, link, origin, world_origin):
        look = polygon.look
        head = f"          Begin Polygon Item={polygon.item}"
        head += f" Texture={look.texture}" if look.texture else ""
        head += f" Flags={look.flags}" if look.flags else ""
        start, u, v = polygon.mapping(world_origin)
        if not look.world:
            start = sub(start, origin)
        self.lines.append(f"{head} Link={link}")
        for key, value in (("Origin  ", start), ("Normal  ", polygon.normal), ("TextureU", u), ("TextureV", v)):
            self.lines.append(f"             {key} {triple(value)}")
        if look.pan:
            self.lines.append("             Pan      U=%d V=%d" % look.pan)
        self.lines += [f"             Vertex   {triple(sub(point, origin))}" for point in polygon.points]
        self.lines.append("          End Polygon")

"""The actors of the harbour that are no brushes: zones, lights, sounds, triggers, starts, teleporters and flights."""

import math

from .t3d import number, quoted

QUARTER = 16384


def add_actors(town):
    _zones(town)
    _lights(town)
    _sprites(town)
    _sounds(town)
    _triggers(town)
    _starts(town)
    _teleporters(town)
    _flights(town)


def texture(name):
    return f"Texture'Harbour.Fx.{name}'"


def sound(group, name):
    return f"Sound'Harbour.{group}.{name}'"


def facing(here, there):
    """The rotation that looks from one point to another."""
    dx, dy, dz = (t - h for h, t in zip(here, there))
    units = 32768 / math.pi
    return round(math.atan2(dz, math.hypot(dx, dy)) * units), round(math.atan2(dy, dx) * units), 0


def _zones(town):
    town.in_zone("ZoneInfo", 2)
    town.actor("ZoneInfo", ("AmbientBrightness", "12"), ("AmbientHue", "28"), at=(-768, -608, 128))
    town.in_zone("SkyZoneInfo", 3)
    town.actor("SkyZoneInfo", ("TexUPanSpeed", number(0.2)), ("TexVPanSpeed", number(0.3)), at=(0, 0, -1440))
    town.in_zone("LevelInfo", 1)


def _light(brightness, hue, saturation, radius, *more):
    values = {"Brightness": brightness, "Hue": hue, "Saturation": saturation, "Radius": radius}
    return [("Light" + key, str(value)) for key, value in values.items()] + list(more)


def _lights(town):
    lamp = (210, 32, 140, 40)
    for place in ((-640, -160, 176), (-64, -320, 176), (448, -320, 176), (1088, -256, 176), (720, 416, 160)):
        town.actor("Light", at=place, late=_light(*lamp))
    dynamic = ("bDynamicLight", "True")
    town.actor("Light", dynamic, at=(-64, -560, 208), late=_light(232, 30, 150, 48))
    town.actor("Light", dynamic, at=(832, -700, 280), late=_light(200, 24, 130, 36))
    town.in_zone("ZoneInfo", 2)
    town.actor("Light", at=(-560, -736, 200), late=_light(180, 36, 120, 30))
    town.actor("Light", at=(-992, -448, 200), late=_light(128, 150, 160, 26))
    lantern = _light(240, 34, 90, 36)
    town.actor("TriggerLight", ("ChangeTime", number(0.8)), at=(-768, -608, 216), tag="lantern", late=lantern)
    town.in_zone("LevelInfo", 1)
    fire = [("AmbientSound", sound("Loops", "crackle"))]
    fire += [("SoundRadius", "24"), ("SoundVolume", "220"), ("SoundPitch", "72")]
    glow = _light(220, 14, 60, 28, ("LightType", "LT_Flicker"), ("LightEffect", "LT_FLICKER"))
    town.actor("Light", at=(1016, -888, 224), late=fire + glow)
    spot = [("LightEffect", "LE_StaticSpot")] + _light(255, 40, 200, 96, ("LightCone", "72"))
    bridge = (960, 64, 0)
    mast = (960, 520, 336)
    town.actor("Spotlight", dynamic, at=mast, turned=facing(mast, bridge), late=spot)
    town.actor("Sunlight", dynamic, at=(-900, 600, 800), turned=(-8200, -6000, 0), late=_light(190, 20, 190, 64))
    # The evening sun of baked light, where what changes does not count. It hangs below the clouds, which cast shadows.
    town.actor("Light", at=(-900, 600, 900), tag="eveningSun", late=_light(80, 20, 170, 192))
    town.actor("Light", at=(-64, 96, 128), tag="craneLamp", late=_light(160, 32, 140, 16))
    town.in_zone("SkyZoneInfo", 3)
    town.actor("Light", at=(-200, 0, -1440), late=_light(255, 20, 180, 64))
    town.in_zone("LevelInfo", 1)


def _sprites(town):
    see_through = ("Style", "STY_Translucent")
    flame = (see_through, ("Texture", texture("flame")))
    burning = _light(180, 18, 70, 16, ("LightEffect", "LT_FLICKER"))
    for place in ((596, -560, 216), (1068, -560, 216)):
        town.actor("TorchFlame", *flame, ("DrawScale", number(0.75)), at=place, late=burning)
    flare = (see_through, ("Texture", texture("flare")))
    town.actor("ScaledSprite", *flare, ("DrawScale", number(1.5)), at=(-64, -144, 304), late=_light(140, 32, 150, 20))
    town.actor("UTFlare", *flare, ("DrawScale", number(4)), at=(960, 640, 424))


def _sounds(town):
    waves = (("AmbientSound", sound("Loops", "lapping")), ("SoundRadius", "40"), ("SoundVolume", "120"))
    town.actor("AmbientSound", at=(-900, 200, -40), late=waves)
    town.actor("AmbientSound", at=(400, 200, -40), late=waves)
    town.actor("AmbientSound", at=(960, 640, 384), late=[("AmbientSound", sound("Loops", "hum")), ("SoundPitch", "48")])
    names = ("gull", "drip", "clank")
    clips = [(f"Sounds({index})", sound("Harbour", name)) for index, name in enumerate(names)]
    town.actor(
        "DynamicAmbientSound",
        ("playProbability", number(0.4)),
        ("minReCheckTime", number(3)),
        ("maxReCheckTime", number(8)),
        ("bDontRepeat", "True"),
        *clips,
        at=(-200, 400, 64),
        late=[("SoundRadius", "80"), ("SoundVolume", "200")],
    )
    off = ("bInitiallyOn", "False")
    bell = ("AmbSound", sound("Bells", "bell"))
    town.actor("TriggeredAmbientSound", bell, off, ("rePlayTime", number(2)), at=(1056, -96, 96), tag="bridgebell")
    hammer = ("AmbSound", sound("Forge", "clank"))
    once = ("bPlayOnceOnly", "True")
    town.actor("TriggeredAmbientSound", hammer, off, once, at=(1016, -816, 168), tag="hammer")


def _size(radius):
    """High enough for the eyes of a visitor on foot, who stands 48 units below the middle."""
    return [("CollisionRadius", number(radius)), ("CollisionHeight", number(128))]


def _triggers(town):
    town.actor("Trigger", at=(-320, -592, 48), event="lift", late=_size(64))
    town.actor("ElevatorTrigger", ("GotoKeyframe", "1"), at=(-440, -592, 316), event="lift", late=_size(64))
    town.in_zone("ZoneInfo", 2)
    town.actor("Trigger", at=(-768, -480, 48), event="lantern", late=_size(128))
    town.in_zone("LevelInfo", 1)
    town.actor("Trigger", ("ReTriggerDelay", number(8)), at=(960, -160, 48), event="bridgecall", late=_size(128))
    town.actor("Trigger", ("ReTriggerDelay", number(8)), at=(960, 288, 48), event="bridgecall", late=_size(128))
    town.actor("Trigger", at=(1016, -784, 168), event="hammer", late=_size(40))
    town.actor("Trigger", ("bInitiallyActive", "False"), at=(160, -400, 48), event="nobody")
    # The bell first, then the bridge.
    town.actor(
        "Dispatcher",
        ("OutEvents(0)", quoted("bridgebell")),
        ("OutEvents(1)", quoted("drawbridge")),
        ("OutDelays(1)", number(1.5)),
        at=(1040, -160, 48),
        tag="bridgecall",
    )
    town.actor(
        "StochasticTrigger",
        ("Events(0)", quoted("crane")),
        ("Events(1)", quoted("hammer")),
        ("triggerProbability", number(0.6)),
        at=(-64, -240, 48),
        late=_size(96),
    )


def _starts(town):
    place = (-420, -340, 336)
    town.actor("PlayerStart", at=place, turned=facing(place, (700, 200, 40)), tag="Overlook")
    town.actor("PlayerStart", at=(-768, -150, 48), turned=(0, -QUARTER, 0))
    place = (440, -240, 48)
    town.actor("PlayerStart", at=place, turned=facing(place, (960, 560, 100)))
    place = (600, -720, 176)
    town.actor("PlayerStart", at=place, turned=facing(place, (1016, -800, 176)), tag="Forge")
    place = (1180, 380, 48)
    town.actor("PlayerStart", at=place, turned=facing(place, (930, 640, 120)))


def _teleporters(town):
    town.in_zone("ZoneInfo", 2)
    town.actor("Teleporter", ("URL", quoted("gallery")), at=(-1056, -784, 48), turned=(0, 8192, 0), tag="store")
    town.in_zone("LevelInfo", 1)
    town.actor("Teleporter", ("URL", quoted("store")), at=(832, 640, 416), turned=(0, 2 * QUARTER, 0), tag="gallery")
    # One that leads to another level.
    away = ("URL", quoted("Marsh.unr#ferry"))
    town.actor("Teleporter", away, at=(1216, -384, 48), turned=(0, 2 * QUARTER, 0), tag="towngate")
    home = (("FavoriteNumber", "1"), ("URL", quoted("Quayside")))
    town.actor("FavoritesTeleporter", *home, at=(720, 896, 48), turned=(0, -8192, 0), tag="mole")
    town.actor("VisibleTeleporter", ("URL", quoted("mole")), at=(160, -640, 48), turned=(0, QUARTER, 0), tag="quayside")


def _flights(town):
    tour = [
        ((-1060, 240, 150), (-768, -420, 110)),
        ((-560, 340, 190), (-160, -100, 150)),
        ((0, 400, 240), (360, -500, 100)),
        ((520, 260, 300), (960, 560, 330)),
        ((860, 300, 400), (1000, -400, 120)),
        ((900, -260, 300), (830, -760, 180)),
        ((260, -300, 170), (-500, -560, 150)),
    ]
    _path(town, "tour", [(here, facing(here, there)) for here, there in tour], slow={4: 0.5})
    circle = []
    for step in range(5):
        angle = step * math.tau / 4
        here = (round(960 + 330 * math.cos(angle)), round(640 + 330 * math.sin(angle)), 440 + 24 * (step % 2))
        circle.append((here, (-800, round(QUARTER * (step + 1)), 2400)))
    _path(town, "gull", circle)
    ride = ("InitialState", quoted("PlayerPath"))
    town.actor("SpecialEvent", ride, at=(960, 900, 48), tag="followGull", event="gull")


def _path(town, tag, points, slow=None):
    last = len(points) - 1
    for position, (place, turned) in enumerate(points):
        keys = [("Position", str(position))] if position else []
        keys += [("RateModifier", number(slow[position]))] if slow and position in slow else []
        keys += [("bEndOfPath", "True")] if position == last else []
        town.actor("InterpolationPoint", *keys, at=place, turned=turned, tag=tag)

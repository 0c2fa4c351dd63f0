#!/usr/bin/env python3
"""Makes the sample levels with their textures, sounds and meshes, and the teleporter model's texture.

    make_samples.py             writes the files
    make_samples.py --check     tells which files in the tree are not what this script makes; exit status 1 if any

Needs nothing but Python's standard library. What it writes is part of the repository.
"""

import sys
from pathlib import Path

from samplelib import harbour, image_files, meshes, sounds, terrace, textures

ROOT = Path(__file__).resolve().parent.parent


def texture_files():
    png = image_files.png
    return {
        "brick.png": png(textures.masonry(16, 8, textures.ramp((70, 54, 48), (178, 104, 82), 16), 20)),
        "clouds.png": png(textures.sky_clouds()),
        "cobble.png": png(textures.cobble()),
        "crate.png": png(textures.crate()),
        "dusk.png": png(textures.dusk()),
        "fall.png": png(textures.waterfall()),
        "flame.png": png(textures.flame()),
        "flare.png": png(textures.flare()),
        "glass.png": png(textures.glass()),
        "grass.png": png(textures.grain((38, 58, 24), (122, 146, 66), 21, 0.45)),
        "grating.bmp": image_files.bmp(textures.grating()),
        "lamp.tga": image_files.tga(textures.lamp()),
        "lava.png": png(textures.lava()),
        "metal.png": png(textures.metal()),
        "netting.pcx": image_files.pcx(textures.netting()),
        "planks.png": png(textures.planks()),
        "plaster.png": png(textures.grain((150, 142, 126), (216, 208, 190), 22, 0.25)),
        "quay.png": png(textures.masonry(32, 16, textures.ramp((44, 48, 50), (150, 150, 142), 16), 23)),
        "sand.png": png(textures.grain((120, 102, 74), (192, 170, 128), 24, 0.35)),
        "shingle.png": png(textures.shingles()),
        "sign.png": png(textures.sign()),
        "sun.png": png(textures.sun()),
        "terrace_heights.bmp": image_files.grey16_bmp(terrace.height_map()),
        "water.png": png(textures.water()),
    }


def sound_files():
    names = ("bell", "clank", "crackle", "drip", "gull", "hum", "lapping")
    return {name + ".wav": getattr(sounds, name)() for name in names}


def model_files():
    """Every model in both encodings."""
    props = {"Bench": meshes.bench(), "Gate": meshes.gate(), "Lantern": meshes.lantern(), "Urn": meshes.urn()}
    models = {"samples/meshes/Terrace/" + name: parts for name, parts in props.items()}
    models["resources/data/TheVisTeleporter"] = meshes.teleporter()
    files = {name + ".wrl": meshes.wrl(parts).encode("ascii") for name, parts in models.items()}
    return files | {name + ".x3d": meshes.x3d(parts).encode("ascii") for name, parts in models.items()}


def all_files():
    """Every file by its path below the root."""
    files = {"resources/data/VisTeleport.png": image_files.png(textures.crystal())} | model_files()
    files["samples/harbour.t3d"] = harbour.level().encode("ascii")
    files["samples/terrace.t3d"] = terrace.level().encode("ascii")
    files |= {"samples/textures/" + name: data for name, data in texture_files().items()}
    files |= {"samples/sounds/" + name: data for name, data in sound_files().items()}
    return files


def is_same(path, data):
    if not path.is_file():
        return False
    there = path.read_bytes()
    return image_files.same_png(there, data) if path.suffix == ".png" else there == data


def main():
    files = all_files()
    if sys.argv[1:] == ["--check"]:
        different = [name for name, data in files.items() if not is_same(ROOT / name, data)]
        for name in different:
            print(name, "is not what make_samples.py makes")
        sys.exit(1 if different else 0)
    for name, data in files.items():
        (ROOT / name).parent.mkdir(parents=True, exist_ok=True)
        (ROOT / name).write_bytes(data)
    print(len(files), "files,", sum(map(len, files.values())), "bytes")


if __name__ == "__main__":
    main()

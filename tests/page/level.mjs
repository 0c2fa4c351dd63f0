// Levels of the tests: brushes and actors as T3D text. Lengths are Unreal units.

const vector = v => v.map(n => n.toFixed(6)).join(",");

// A solid box between two corners.
export function box(name, low, high, texture = "brick") {
  const corner = bits => [0, 1, 2].map(axis => (bits >> axis & 1 ? high : low)[axis]);
  const faces = [[0, 4, 6, 2], [1, 3, 7, 5], [0, 1, 5, 4], [2, 6, 7, 3], [0, 2, 3, 1], [4, 5, 7, 6]];
  const polygons = faces.map(face => {
    const points = face.map(corner);
    return `Begin Polygon Texture=${texture}\nOrigin ${vector(points[0])}\nNormal 0,0,1\nTextureU 1,0,0\nTextureV 0,1,0\n`
      + points.map(point => `Vertex ${vector(point)}\n`).join("") + "End Polygon\n";
  });
  return actor("Brush", name, [0, 0, 0], `CsgOper=CSG_Add\nBegin Brush Name=${name}Model\nBegin PolyList\n${polygons.join("")}`
    + `End PolyList\nEnd Brush\nBrush=Model'MyLevel.${name}Model'\n`);
}

export function actor(type, name, [x, y, z], keys = "") {
  return `Begin Actor Class=${type} Name=${name}\n${keys}Location=(X=${x},Y=${y},Z=${z})\nTag=${name}\nName=${name}\nEnd Actor\n`;
}

export const map = (...actors) => `Begin Map\n${actors.join("")}End Map\n`;

// A shader for surfaces with a light map: the viewer's own for several textures goes through all that they may do, in
// every pixel, which is many times slower where a processor draws.

const lightVertexShader = `#version 300 es
precision highp float;
uniform mat4 x3d_ProjectionMatrix;
uniform mat4 x3d_ModelViewMatrix;
uniform mat4 x3d_TextureMatrix[1];
in vec4 x3d_Vertex;
in vec4 x3d_TexCoord0;
in vec4 x3d_TexCoord1;
out vec3 place;
out vec2 onTexture;
out vec2 onMap;
vec2 FromTop(vec2 at) { return vec2(at.s, 1.0 - at.t); } // the viewer's images begin there
void main() {
  vec4 seen = x3d_ModelViewMatrix * x3d_Vertex;
  place = seen.xyz;
  onTexture = FromTop((x3d_TextureMatrix[0] * x3d_TexCoord0).st);
  onMap = FromTop(x3d_TexCoord1.st);
  gl_Position = x3d_ProjectionMatrix * seen;
}`;

// The fog is linear, as of VRML97, clause 6.19.
const lightFragmentShader = `#version 300 es
precision highp float;
uniform sampler2D x3d_Texture2D[2];
uniform x3d_FogParameters x3d_Fog;
in vec3 place;
in vec2 onTexture;
in vec2 onMap;
out vec4 x3d_FragColor;
void main() {
  vec3 color = texture(x3d_Texture2D[0], onTexture).rgb * texture(x3d_Texture2D[1], onMap).rgb;
  float range = x3d_Fog.visibilityRange;
  if (range > 0.0) color = mix(x3d_Fog.color, color, clamp(1.0 - length(x3d_Fog.matrix * place) / range, 0.0, 1.0));
  x3d_FragColor = vec4(color, 1.0);
}`;

function makeLightShader(browser, scene) {
  scene.addComponent(browser.getComponent("Shaders", 1));
  const shader = scene.createNode("ComposedShader");
  shader.language = "GLSL";
  for (const [type, text] of [["VERTEX", lightVertexShader], ["FRAGMENT", lightFragmentShader]]) {
    const part = scene.createNode("ShaderPart");
    part.type = type;
    part.url = new X3D.MFString("data:x-shader," + encodeURIComponent(text));
    shader.parts.push(part);
  }
  return shader;
}

// True for an opaque surface that shows its texture times its light.
function hasLightMap(shape) {
  const texture = shape.appearance?.texture;
  return texture?.getNodeTypeName() === "MultiTexture" && !shape.geometry?.color
    && [...texture.mode].join() === "MODULATE,MODULATE" && [...texture.texture].every(map => map.url?.length);
}

// Gives the scene's surfaces with light maps their shader. Returns how many there are.
function useLightShader(browser, scene) {
  const lit = [];
  const visit = node => {
    if (node?.getNodeTypeName() === "Shape") return hasLightMap(node) && lit.push(node.appearance);
    for (const child of node?.children ?? []) visit(child);
  };
  for (const root of scene.rootNodes) visit(root);
  if (!lit.length) return 0;
  const shader = makeLightShader(browser, scene);
  for (const appearance of lit) appearance.shaders = new X3D.MFNode(shader);
  return lit.length;
}

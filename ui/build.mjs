// Bundles the two pages and writes each as a C++ file of byte arrays, so that the programs carry them inside.
// Usage: node build.mjs FOLDER    (writes FOLDER/page_assets.cpp and FOLDER/bench_assets.cpp)
import { build } from "esbuild";
import { readFile, writeFile, mkdir } from "node:fs/promises";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));

const contentTypes = {
  html: "text/html; charset=utf-8",
  js: "text/javascript; charset=utf-8",
  css: "text/css; charset=utf-8",
  svg: "image/svg+xml",
};

// A raw string literal may hold 64 KiB at most in some compilers; pieces are joined by the compiler.
function literal(text) {
  const pieces = [];
  for (let at = 0; at < text.length; at += 8000) {
    pieces.push(`R"asset_(${text.slice(at, at + 8000)})asset_"`);
  }
  return pieces.length === 0 ? '""' : pieces.join("\n");
}

// The files of a page: "page" is the panels' page, "bench" the virtual cockpit.
export async function bundle(folder, title) {
  const result = await build({
    entryPoints: [join(here, "src", folder, "main.tsx")],
    bundle: true,
    minify: true,
    charset: "ascii",
    target: "es2020",
    format: "iife",
    jsx: "automatic",
    jsxImportSource: "preact",
    outfile: `${folder}.js`,
    write: false,
    logLevel: "warning",
  });
  const text = (ending) => result.outputFiles.find((file) => file.path.endsWith(ending))?.text ?? "";
  const html = (await readFile(join(here, "src", "shared", "index.html"), "utf8")).replaceAll("{{title}}", title);
  return [
    { path: "/", type: contentTypes.html, text: html },
    { path: "/page.js", type: contentTypes.js, text: text(".js") },
    { path: "/page.css", type: contentTypes.css, text: text(".css") },
    { path: "/favicon.svg", type: contentTypes.svg, text: await readFile(join(here, "src", "shared", "favicon.svg"), "utf8") },
  ];
}

function source(functionName, assets) {
  const rows = assets.map(
    (asset) => `    Asset{"${asset.path}", "${asset.type}", std::string_view(\n${literal(asset.text)},\n        ${Buffer.byteLength(asset.text)})},`,
  );
  return [
    "// Made by ui/build.mjs from the pages' sources.",
    "#include <array>",
    '#include "web/assets.h"',
    "namespace web {",
    `std::span<const Asset> ${functionName}() {`,
    `    static constexpr std::array<Asset, ${assets.length}> kAssets = {{`,
    ...rows,
    "    }};",
    "    return kAssets;",
    "}",
    "}  // namespace web",
    "",
  ].join("\n");
}

async function writeSources(target) {
  await mkdir(target, { recursive: true });
  for (const [name, folder, title] of [
    ["page_assets", "page", "Cockpit"],
    ["bench_assets", "bench", "Virtual cockpit"],
  ]) {
    await writeFile(join(target, `${name}.cpp`), source(name, await bundle(folder, title)));
  }
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  await writeSources(process.argv[2] ?? join(here, "dist"));
}

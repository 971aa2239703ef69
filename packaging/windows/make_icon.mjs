// Draws the programs' icon, a round gauge with its needle: node make_icon.mjs FILE.ico
import { writeFileSync } from "node:fs";

const sizes = [16, 24, 32, 48, 64];
const samples = 4; // a side, of each pixel

const dial = [24, 32, 44];
const rim = [196, 204, 214];
const mark = [236, 240, 245];
const needle = [255, 176, 32];

// The colour at a place of the unit disc, y upward; nothing outside of it.
function colourAt(x, y) {
  const radius = Math.hypot(x, y);
  if (radius > 0.97) return undefined;
  if (radius > 0.84) return rim;
  const along = (angle) => x * Math.sin(angle) + y * Math.cos(angle);
  const across = (angle) => Math.abs(x * Math.cos(angle) - y * Math.sin(angle));
  const pointer = (50 * Math.PI) / 180;
  if (radius < 0.16 || (along(pointer) > 0 && radius < 0.72 && across(pointer) < 0.1 * (1 - radius / 0.9))) return needle;
  for (let hour = 0; hour < 12; ++hour) {
    const angle = (hour * Math.PI) / 6;
    if (hour !== 6 && radius > 0.6 && radius < 0.78 && along(angle) > 0 && across(angle) < 0.05) return mark;
  }
  return dial;
}

// One pixel as blue, green, red, opacity.
function pixel(column, row, size) {
  const sum = [0, 0, 0];
  let hits = 0;
  for (let i = 0; i < samples * samples; ++i) {
    const x = ((column + ((i % samples) + 0.5) / samples) / size) * 2 - 1;
    const y = 1 - ((row + (Math.floor(i / samples) + 0.5) / samples) / size) * 2;
    const colour = colourAt(x, y);
    if (colour) {
      colour.forEach((part, at) => (sum[at] += part));
      ++hits;
    }
  }
  const [red, green, blue] = sum.map((part) => (hits ? Math.round(part / hits) : 0));
  return [blue, green, red, Math.round((hits * 255) / (samples * samples))];
}

// A picture of an icon file: a bitmap's head with twice the height, the rows from the lowest up, and an empty mask.
function picture(size) {
  const head = Buffer.alloc(40);
  head.writeUInt32LE(40, 0);
  head.writeInt32LE(size, 4);
  head.writeInt32LE(2 * size, 8);
  head.writeUInt16LE(1, 12);
  head.writeUInt16LE(32, 14);
  const rows = [];
  for (let row = size - 1; row >= 0; --row) {
    for (let column = 0; column < size; ++column) rows.push(...pixel(column, row, size));
  }
  const maskRow = Math.ceil(size / 32) * 4;
  return Buffer.concat([head, Buffer.from(rows), Buffer.alloc(maskRow * size)]);
}

const pictures = sizes.map(picture);
const directory = Buffer.alloc(6 + 16 * sizes.length);
directory.writeUInt16LE(1, 2);
directory.writeUInt16LE(sizes.length, 4);
let place = directory.length;
sizes.forEach((size, index) => {
  const entry = 6 + 16 * index;
  directory.writeUInt8(size, entry);
  directory.writeUInt8(size, entry + 1);
  directory.writeUInt16LE(1, entry + 4);
  directory.writeUInt16LE(32, entry + 6);
  directory.writeUInt32LE(pictures[index].length, entry + 8);
  directory.writeUInt32LE(place, entry + 12);
  place += pictures[index].length;
});
writeFileSync(process.argv[2], Buffer.concat([directory, ...pictures]));

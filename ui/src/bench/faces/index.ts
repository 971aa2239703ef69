import type { Face } from "./face";
import { genericFace } from "./generic";
import { needleGaugeFace } from "./needle_gauge";

/** One row a family; the names are those of the bench's table of families. */
const FACES: Record<string, Face> = {
  needle_gauge: needleGaugeFace,
};

export function faceOf(name: string): Face {
  return FACES[name] ?? genericFace;
}

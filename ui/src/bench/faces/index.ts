import { engineClusterFace } from "./engine_cluster";
import { engineClusterGaugeFace } from "./engine_cluster_gauge";
import type { Face } from "./face";
import { genericFace } from "./generic";
import { needleGaugeFace } from "./needle_gauge";

/** One row a family; the names are those of the bench's table of families. */
const FACES: Record<string, Face> = {
  engine_cluster: engineClusterFace,
  engine_cluster_gauge: engineClusterGaugeFace,
  needle_gauge: needleGaugeFace,
};

export function faceOf(name: string): Face {
  return FACES[name] ?? genericFace;
}

import type { JSX } from "preact";

import { numberOf } from "../store";
import type { Face, FaceProps } from "./face";

function Generic({ instrument, values }: FaceProps): JSX.Element {
  return (
    <svg viewBox="-100 -60 200 120" role="img" aria-label={`${instrument.typeName}, id ${instrument.id}`}>
      <rect class="case" x={-98} y={-58} width={196} height={116} rx={6} />
      <rect class="dial" x={-88} y={-48} width={176} height={96} rx={4} />
      <g class="print">
        <text class="face-title" y={-14} font-size={12}>
          {instrument.typeName.trim()}
        </text>
        <text class="face-unit" y={8} font-size={10}>
          not simulated
        </text>
        <text class="face-unit" y={26} font-size={10}>
          {numberOf(values, "commands")} commands taken
        </text>
      </g>
    </svg>
  );
}

/** A device whose family has no face of its own. */
export const genericFace: Face = { component: Generic, size: () => "small" };

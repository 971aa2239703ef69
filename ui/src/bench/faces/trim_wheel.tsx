import type { JSX } from "preact";

import { Knob } from "../controls";
import { numberOf, textOf } from "../store";
import { Layers } from "../svg";
import type { Face, FaceProps } from "./face";

const NEUTRAL = 512;
const RIBS = 14;
const WHEEL_TURNS = 2; // from stop to stop
const SCALE_HALF = 62;

/** Where the ribs of the wheel show on its front, for how far it is turned. */
function ribs(share: number): number[] {
  return Array.from({ length: RIBS }, (_, rib) => {
    const angle = ((rib / RIBS + share * WHEEL_TURNS) * 360) % 360;
    return Math.sin(((angle - 180) / 180) * (Math.PI / 2)) * 84;
  });
}

function TrimWheel({ instrument, values, command }: FaceProps): JSX.Element {
  const wheel = numberOf(values, "wheel");
  const share = (wheel - NEUTRAL) / NEUTRAL;
  const percent = `${Math.round(share * 100)} %`;
  return (
    <div class="round-face">
      <Layers
        label={`Trim wheel, id ${instrument.id}, at ${percent}`}
        fixed={
          <>
            <rect class="case" x={-90} y={-98} width={180} height={196} rx={8} />
            <g class="print">
              {[-1, -0.5, 0, 0.5, 1].map((place) => (
                <line x1={-48} x2={place === 0 ? -30 : -38} y1={place * SCALE_HALF} y2={place * SCALE_HALF} stroke-width={2} />
              ))}
              <text class="scale-label" x={-64} y={-SCALE_HALF} font-size={11}>
                DN
              </text>
              <text class="scale-label" x={-64} y={SCALE_HALF} font-size={11}>
                UP
              </text>
              <text class="face-title" x={-64} y={0} font-size={11}>
                TRIM
              </text>
            </g>
            <rect class="bezel" x={2} y={-88} width={62} height={176} rx={10} />
          </>
        }
        moving={
          <>
            {ribs(share).map((y) => (
              <line class="wheel-rib" x1={6} x2={60} y1={y} y2={y} />
            ))}
            <g class="sliding" data-wheel={wheel} style={{ transform: `translateY(${(share * SCALE_HALF).toFixed(2)}px)` }}>
              <path class="lubber" d="M -26 0 L -10 -7 V 7 Z" />
            </g>
            <g class="print">
              <text class="face-unit" x={-56} y={86} font-size={10}>
                {textOf(values, "motor").toUpperCase()}
              </text>
            </g>
          </>
        }
      />
      <span class="corner corner-bottom-right">
        <Knob bench={{ instrument, command }} name="wheel" label="Trim wheel" value={percent} />
      </span>
    </div>
  );
}

export const trimWheelFace: Face = { component: TrimWheel, size: () => "small" };

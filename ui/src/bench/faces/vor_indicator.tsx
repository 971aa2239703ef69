import type { JSX } from "preact";

import { CompassRose, Turn } from "../compass";
import { Knob } from "../controls";
import { RoundFace, WarningFlag } from "../round_face";
import { flagOf, numberOf } from "../store";
import type { Face, FaceProps } from "./face";

const WITH_GLIDE_SLOPE = 106;
const FULL_SCALE = 40;
const DOTS = [-40, -32, -24, -16, -8, 8, 16, 24, 32, 40];
const TO = 1;
const FROM = 2;

function VorIndicator({ instrument, values, command }: FaceProps): JSX.Element {
  const course = numberOf(values, "course");
  const toFrom = numberOf(values, "toFrom");
  const loc = numberOf(values, "loc") * FULL_SCALE;
  const slope = numberOf(values, "slope") * FULL_SCALE;
  const glideSlope = instrument.type === WITH_GLIDE_SLOPE;
  return (
    <RoundFace
      label={`VOR${instrument.type - 105} indicator, id ${instrument.id}`}
      corners={{
        "bottom-left": <Knob bench={{ instrument, command }} name="obs" label="Course (OBS)" value={`${course} degrees`} />,
      }}
    >
      <Turn degrees={-course} name="card">
        <CompassRose radius={86} labelSize={14} />
      </Turn>
      <path class="lubber" d="M 0 -70 L -5 -60 H 5 Z" />
      <circle class="dial" r={55} />
      <g>
        {DOTS.map((place) => (
          <circle class="cdi-dot" cx={place} r={2} />
        ))}
        {glideSlope && DOTS.map((place) => <circle class="cdi-dot" cy={place} r={2} />)}
        <circle class="cdi-dot" r={5} />
      </g>
      {toFrom === TO && <path class="to-from" data-to-from="TO" d="M 28 -24 L 20 -12 H 36 Z" />}
      {toFrom === FROM && <path class="to-from" data-to-from="FROM" d="M 28 24 L 20 12 H 36 Z" />}
      <WarningFlag x={-28} y={24} text="NAV" shown={toFrom !== TO && toFrom !== FROM} name="nav" />
      {glideSlope && <WarningFlag x={-28} y={-24} text="GS" shown={!flagOf(values, "slopeValid")} name="gs" />}
      <g class="sliding" data-needle="loc" data-place={loc.toFixed(1)} style={{ transform: `translateX(${loc.toFixed(2)}px)` }}>
        <line class="cdi-bar" x1={0} y1={-50} x2={0} y2={50} />
      </g>
      {glideSlope && (
        <g class="sliding" data-needle="slope" data-place={slope.toFixed(1)} style={{ transform: `translateY(${slope.toFixed(2)}px)` }}>
          <line class="cdi-bar" x1={-50} y1={0} x2={50} y2={0} />
        </g>
      )}
    </RoundFace>
  );
}

export const vorIndicatorFace: Face = { component: VorIndicator, size: () => "small" };

import type { JSX } from "preact";

import { CompassRose, Turn } from "../compass";
import { Knob } from "../controls";
import { RoundFace, WarningFlag } from "../round_face";
import { flagOf, limitedOf, numberOf } from "../store";
import type { Face, FaceProps } from "./face";

const WITH_GLIDE_SLOPE = 106;
const FULL_SCALE = 40;
const DOTS = [-40, -30, -20, -10, 10, 20, 30, 40];
const TO = 1;
const FROM = 2;

function VorIndicator({ instrument, values, command }: FaceProps): JSX.Element {
  const course = numberOf(values, "course");
  const toFrom = numberOf(values, "toFrom");
  const loc = limitedOf(values, "loc", -1, 1) * FULL_SCALE;
  const slope = limitedOf(values, "slope", -1, 1) * FULL_SCALE;
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
      <path class="lubber" d="M 0 -80 L -5 -92 H 5 Z" />
      <circle class="dial" r={55} />
      <g>
        {DOTS.map((place) => (
          <circle class="cdi-dot" cx={place} r={1.5} />
        ))}
        {glideSlope && DOTS.map((place) => <circle class="cdi-dot" cy={place} r={1.5} />)}
        <circle class="cdi-ring" r={5} />
      </g>
      <g class="sliding" data-needle="loc" data-place={loc.toFixed(1)} style={{ transform: `translateX(${loc.toFixed(2)}px)` }}>
        <line class="cdi-edge" x1={0} y1={-50} x2={0} y2={50} />
        <line class="cdi-bar" x1={0} y1={-50} x2={0} y2={50} />
      </g>
      {glideSlope && (
        <g class="sliding" data-needle="slope" data-place={slope.toFixed(1)} style={{ transform: `translateY(${slope.toFixed(2)}px)` }}>
          <line class="cdi-edge" x1={-50} y1={0} x2={50} y2={0} />
          <line class="cdi-bar" x1={-50} y1={0} x2={50} y2={0} />
        </g>
      )}
      {toFrom === TO && <path class="to-from" data-to-from="TO" d="M 28 -24 L 20 -12 H 36 Z" />}
      {toFrom === FROM && <path class="to-from" data-to-from="FROM" d="M 28 24 L 20 12 H 36 Z" />}
      <WarningFlag x={-28} y={24} text="NAV" shown={toFrom !== TO && toFrom !== FROM} name="nav" />
      {glideSlope && <WarningFlag x={-28} y={-24} text="GS" shown={!flagOf(values, "slopeValid")} name="gs" />}
    </RoundFace>
  );
}

export const vorIndicatorFace: Face = { component: VorIndicator, size: () => "small" };

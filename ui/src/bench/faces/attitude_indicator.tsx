import type { JSX } from "preact";

import { Turn } from "../compass";
import { RoundFace, WarningFlag } from "../round_face";
import { flagOf, limitedOf, numberOf } from "../store";
import { RadialMark } from "../svg";
import type { Face, FaceProps } from "./face";

const UNITS_PER_DEGREE = 2.6;
const LADDER = [-20, -15, -10, -5, 5, 10, 15, 20];
const BANK_MARKS = [-60, -45, -30, -20, -10, 0, 10, 20, 30, 45, 60];
const BALL_RANGE = 26;
const PITCH_RANGE = 28; // degrees to the stop
const MODEL_WITH_BALL = 5;

function Ladder({ degrees }: { degrees: number }): JSX.Element {
  const half = degrees % 10 === 0 ? 24 : 11;
  const y = -degrees * UNITS_PER_DEGREE;
  return (
    <g>
      <line class="ladder" x1={-half} y1={y} x2={half} y2={y} stroke-width={1.3} />
      {degrees % 10 === 0 && (
        <text class="ladder-label" x={half + 9} y={y}>
          {Math.abs(degrees)}
        </text>
      )}
    </g>
  );
}

function AttitudeIndicator({ instrument, values }: FaceProps): JSX.Element {
  const bank = numberOf(values, "bank");
  const pitch = limitedOf(values, "pitch", -PITCH_RANGE, PITCH_RANGE);
  const slip = limitedOf(values, "slip", -1, 1);
  const clip = `attitude-${instrument.key}`;
  return (
    <RoundFace label={`Attitude indicator, id ${instrument.id}`}>
      <defs>
        <clipPath id={clip}>
          <circle r={80} />
        </clipPath>
      </defs>
      <g clip-path={`url(#${clip})`}>
        <Turn degrees={-bank} name="bank">
          <g class="sliding" data-pitch={Math.round(numberOf(values, "pitch"))} style={{ transform: `translateY(${(pitch * UNITS_PER_DEGREE).toFixed(2)}px)` }}>
            <rect class="sky" x={-200} y={-300} width={400} height={300} />
            <rect class="ground" x={-200} y={0} width={400} height={300} />
            <line class="horizon" x1={-200} y1={0} x2={200} y2={0} stroke-width={2} />
            {LADDER.map((degrees) => (
              <Ladder degrees={degrees} />
            ))}
          </g>
          <path class="lubber" d="M 0 -70 L -6 -60 H 6 Z" />
        </Turn>
      </g>
      <g class="print">
        {BANK_MARKS.map((degrees) => (
          <RadialMark degrees={degrees} from={80} to={degrees % 30 === 0 ? 88 : 85} width={degrees % 30 === 0 ? 2.6 : 1.6} />
        ))}
      </g>
      <path class="symbol" d="M -56 0 H -24 L -16 9 M 56 0 H 24 L 16 9" />
      <circle class="lubber" r={2.8} />
      {instrument.model === MODEL_WITH_BALL && (
        <g transform="translate(0 66)" data-slip={slip}>
          <rect class="display-window" x={-36} y={-6} width={72} height={12} rx={6} />
          <circle class="hand-body" cx={slip * BALL_RANGE} r={5.4} />
        </g>
      )}
      <WarningFlag x={38} y={-44} text="GYRO" shown={flagOf(values, "inop")} name="gyro" />
    </RoundFace>
  );
}

export const attitudeIndicatorFace: Face = { component: AttitudeIndicator, size: () => "large" };

import type { JSX } from "preact";

import { Knob } from "../controls";
import { RoundFace, Window } from "../round_face";
import { flagOf, numberOf, textOf } from "../store";
import { Hub, Needle, polar, RadialMark } from "../svg";
import type { Face, FaceProps } from "./face";

const FEET_PER_TURN = [10000, 1000] as const;

function print(): JSX.Element {
  return (
    <g class="print">
      {Array.from({ length: 50 }, (_, index) => (
        <RadialMark degrees={index * 7.2} from={index % 5 === 0 ? 74 : 79} to={86} width={index % 5 === 0 ? 2.4 : 1.1} />
      ))}
      {Array.from({ length: 10 }, (_, digit) => {
        const [x, y] = polar(digit * 36, 63);
        return (
          <text class="scale-label" x={x} y={y} font-size={17}>
            {digit}
          </text>
        );
      })}
      <text class="face-title" x={0} y={-40} font-size={9}>
        ALT
      </text>
      <text class="face-unit" x={0} y={40} font-size={8}>
        100 FEET
      </text>
    </g>
  );
}
const PRINT = print();

function Altimeter({ instrument, values, command }: FaceProps): JSX.Element {
  const altitude = numberOf(values, "altitude");
  const inches = textOf(values, "pressureUnit") === "inHg";
  const pressure = numberOf(values, "pressure").toFixed(inches ? 2 : 0);
  return (
    <RoundFace
      label={`Altimeter, id ${instrument.id}`}
      print={PRINT}
      corners={{
        "bottom-left": (
          <Knob
            bench={{ instrument, command }}
            name="pressure"
            label={flagOf(values, "knobMode") ? "Pressure of the simulator" : "Pressure"}
            value={`${pressure} ${textOf(values, "pressureUnit")}`}
          />
        ),
      }}
    >
      <Window x={-35} y={0} width={46} name="altitude" kind="drum" text={Math.round(altitude).toString().padStart(5, " ")} />
      <Window x={38} y={0} width={40} name="pressure" text={pressure} />
      <Needle degrees={(altitude / (FEET_PER_TURN[0] * 10)) * 360} length={82} tail={0} width={3} colour="white" number={3} steps={0} />
      <Needle degrees={(altitude / FEET_PER_TURN[0]) * 360} length={46} tail={14} width={13} colour="white" number={2} steps={0} />
      <Needle degrees={(altitude / FEET_PER_TURN[1]) * 360} length={76} tail={18} width={8} colour="white" number={1} steps={Math.round(altitude)} />
      <Hub />
    </RoundFace>
  );
}

export const altimeterFace: Face = { component: Altimeter, size: () => "small" };

import type { JSX } from "preact";

import { Turn } from "../compass";
import { Knob, PushButton } from "../controls";
import { RoundFace, Window } from "../round_face";
import { flagOf, numberOf, textOf } from "../store";
import { Hub, polar, RadialMark } from "../svg";
import type { Face, FaceProps } from "./face";

const SECONDS_A_MINUTE = 60;

const PRINT = (
  <g class="print">
    {Array.from({ length: 60 }, (_, second) => (
      <RadialMark degrees={second * 6} from={second % 5 === 0 ? 76 : 80} to={86} width={second % 5 === 0 ? 2.4 : 1.1} />
    ))}
    {Array.from({ length: 12 }, (_, index) => {
      const [x, y] = polar(index * 30, 67);
      return (
        <text class="scale-label" x={x} y={y} font-size={12}>
          {index === 0 ? "60" : index * 5}
        </text>
      );
    })}
    <text class="face-unit" x={0} y={-45} font-size={6.5}>
      TIME
    </text>
    <text class="face-unit" x={0} y={-15} font-size={6.5}>
      DATE
    </text>
    <text class="face-unit" x={0} y={29} font-size={6.5}>
      ELAPSED
    </text>
  </g>
);

/** What the second hand counts: "h:mm:ss" of the elapsed time, or the second of the time of day. */
function secondShown(second: number, elapsed: string, hand: string): number {
  return hand === "elapsed" ? Number(elapsed.trim().split(":").pop() ?? 0) || 0 : second;
}

function BoeingClock({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const two = (number: number) => Math.floor(number).toString().padStart(2, "0");
  const time = `${two(numberOf(values, "hour"))}:${two(numberOf(values, "minute"))}`;
  const elapsed = textOf(values, "elapsed");
  const second = secondShown(numberOf(values, "second"), elapsed, textOf(values, "secondHand"));
  return (
    <RoundFace
      label={`Clock, id ${instrument.id}`}
      print={PRINT}
      corners={{
        "top-left": <PushButton bench={bench} name="elapsed" caption="ET" label="Elapsed time: start, stop, reset" lit={flagOf(values, "elapsedRunning")} />,
        "bottom-left": <Knob bench={bench} name="setHour" label="Set the hour" value={time} />,
        "bottom-right": <Knob bench={bench} name="setMinute" label="Set the minute" value={time} />,
      }}
    >
      <Window x={0} y={-31} width={54} name="time" text={time} />
      <Window x={0} y={16} width={78} name="date" text={textOf(values, "date")} />
      <Window x={0} y={42} width={66} name="elapsed" text={elapsed} />
      <Turn degrees={(second / SECONDS_A_MINUTE) * 360} name="second">
        <path class="hand-body" d="M -1.2 16 L -1.2 -74 L 1.2 -74 L 1.2 16 Z" />
      </Turn>
      <Hub radius={6} />
    </RoundFace>
  );
}

export const boeingClockFace: Face = { component: BoeingClock, size: () => "small" };

// Cards that turn: a compass rose, and what keeps a turn short.

import type { ComponentChildren, JSX } from "preact";
import { useMemo, useRef } from "preact/hooks";

import { polar, RadialMark } from "./svg";

const FULL_TURN = 360;
const LABELS = ["N", "3", "6", "E", "12", "15", "S", "21", "24", "W", "30", "33"];

/** The angle that lies nearest to the last one, so that north is no reason to go round. */
export function useNearestTurn(degrees: number): number {
  const last = useRef(degrees);
  const way = (((degrees - last.current) % FULL_TURN) + FULL_TURN * 1.5) % FULL_TURN;
  last.current += way - FULL_TURN / 2;
  return last.current;
}

interface TurnProps {
  degrees: number;
  children: ComponentChildren;
  name?: string;
}

/** What turns around the origin, clockwise. */
export function Turn({ degrees, children, name }: TurnProps): JSX.Element {
  const angle = useNearestTurn(degrees);
  return (
    <g class="turning" data-turn={name} data-degrees={Math.round(degrees)} style={{ transform: `rotate(${angle.toFixed(2)}deg)` }}>
      {children}
    </g>
  );
}

export function CompassRose({ radius, labelSize = 13 }: { radius: number; labelSize?: number }): JSX.Element {
  return useMemo(
    () => (
      <g class="print">
        {Array.from({ length: 72 }, (_, index) => (
          <RadialMark
            degrees={index * 5}
            from={radius - (index % 2 === 0 ? 10 : 6)}
            to={radius}
            width={index % 6 === 0 ? 2.2 : 1.1}
          />
        ))}
        {LABELS.map((label, index) => {
          const [x, y] = polar(index * 30, radius - 19);
          return (
            <text class="scale-label" x={x} y={y} font-size={labelSize} transform={`rotate(${index * 30} ${x} ${y})`}>
              {label}
            </text>
          );
        })}
      </g>
    ),
    [radius, labelSize],
  );
}

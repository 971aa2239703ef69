// The stand-alone engine cluster: a dial for every needle in use, those of two engines side by side, and its displays.

import type { JSX } from "preact";
import { useMemo } from "preact/hooks";

import { MINI_DIAL_SIDE, miniDial, MiniDialPlate, MiniDialPointer, type MiniDial } from "../mini_dial";
import { Display } from "../print";
import type { Instrument } from "../protocol";
import { numberOf, textOf } from "../store";
import { Layers } from "../svg";
import type { Face, FaceProps } from "./face";

const NEEDLES_PER_ENGINE = 8;
const DIALS_ABREAST = 4;
const STEP = MINI_DIAL_SIDE + 4;
const DISPLAY_STRIP = 20;
const MARGIN = 12;

interface Shown {
  dial: MiniDial;
  display: number; // 0 = none
}

interface Cluster {
  shown: Shown[];
  width: number;
  height: number;
}

/** Needle numbers in the order in which their dials stand: the two engines of a row beside each other. */
function needlesInUse(instrument: Instrument): number[] {
  const used = (number: number) => (instrument.needles[number]?.title ?? "") !== "";
  const rows = Array.from({ length: NEEDLES_PER_ENGINE }, (_, row) => row);
  return rows.flatMap((row) => [row, row + NEEDLES_PER_ENGINE].filter(used));
}

function clusterOf(instrument: Instrument): Cluster {
  const numbers = needlesInUse(instrument);
  const twin = numbers.some((number) => number >= NEEDLES_PER_ENGINE);
  const displayOf = (number: number) => instrument.needles[number]?.display ?? 0;
  const abreast = Math.max(1, Math.min(DIALS_ABREAST, numbers.length));
  const shown: Shown[] = [];
  let top = MARGIN;
  for (let first = 0; first < numbers.length; first += abreast) {
    const line = numbers.slice(first, first + abreast);
    const left = MARGIN + ((abreast - line.length) * STEP) / 2;
    line.forEach((number, place) => {
      const [x, y] = [left + (place + 0.5) * STEP, top + STEP / 2];
      const mark = !twin ? "" : number < NEEDLES_PER_ENGINE ? "L" : "R";
      shown.push({ dial: miniDial(instrument.needles[number], { number, x, y, mark }), display: displayOf(number) });
    });
    top += STEP + (line.some((number) => displayOf(number) > 0) ? DISPLAY_STRIP : 0);
  }
  return { shown, width: abreast * STEP + 2 * MARGIN, height: Math.max(top, STEP) + MARGIN };
}

function EngineCluster({ instrument, values }: FaceProps): JSX.Element {
  const cluster = useMemo(() => clusterOf(instrument), [instrument]);
  const { shown, width, height } = cluster;
  const fixed = useMemo(
    () => (
      <>
        <rect class="case" x={1} y={1} width={width - 2} height={height - 2} rx={9} />
        <rect class="face-plate" x={5} y={5} width={width - 10} height={height - 10} rx={6} />
        {shown.map(({ dial }) => (
          <MiniDialPlate dial={dial} />
        ))}
        {shown.length === 0 && (
          <g class="print">
            <text class="face-title" x={width / 2} y={height / 2} font-size={11}>
              NO NEEDLES
            </text>
          </g>
        )}
      </>
    ),
    [shown, width, height],
  );
  return (
    <Layers
      label={`Engine cluster on port ${instrument.port}`}
      viewBox={`0 0 ${width} ${height}`}
      fixed={fixed}
      moving={shown.map(({ dial, display }) => (
        <>
          {display > 0 && (
            <Display
              x={dial.centre[0]}
              y={dial.centre[1] + STEP / 2 + DISPLAY_STRIP / 2 - 2}
              scale={0.76}
              text={textOf(values, `display${display}`)}
              ghost="8888"
              number={display}
            />
          )}
          <MiniDialPointer dial={dial} steps={numberOf(values, `needle${dial.number}`)} />
        </>
      ))}
    />
  );
}

export const engineClusterFace: Face = { component: EngineCluster, size: () => "wide" };

// The engine cluster on the gauge bus: eight fixed instruments in pairs.

import type { JSX } from "preact";
import { useMemo } from "preact/hooks";

import { MINI_DIAL_SIDE, miniDial, MiniDialPlate, MiniDialPointer, type MiniDial } from "../mini_dial";
import type { Instrument } from "../protocol";
import { numberOf } from "../store";
import { Layers } from "../svg";
import type { Face, FaceProps } from "./face";

/** In the order of the needles; two neighbours share a plate. */
const DIALS = [
  ["fuelLeft", "FUEL LEFT"],
  ["fuelRight", "FUEL RIGHT"],
  ["egt", "EGT"],
  ["fuelFlow", "FUEL FLOW"],
  ["oilTemperature", "OIL TEMP"],
  ["oilPressure", "OIL PRESS"],
  ["vacuum", "VAC"],
  ["ampere", "AMP"],
] as const;

const MARGIN = 8;
const GAP = 8; // between two pairs
const PAIR = 2 * MINI_DIAL_SIDE + 8;
const LINE = MINI_DIAL_SIDE + 8;
const WIDTH = 2 * (PAIR + MARGIN) + GAP;
const HEIGHT = 2 * (LINE + MARGIN) + GAP;

/** The left upper corner of a pair. */
function cornerOf(pair: number): [x: number, y: number] {
  return [MARGIN + (pair % 2) * (PAIR + GAP), MARGIN + Math.floor(pair / 2) * (LINE + GAP)];
}

function dialsOf(instrument: Instrument): MiniDial[] {
  return DIALS.map(([, title], index) => {
    const [left, top] = cornerOf(Math.floor(index / 2));
    const x = left + 4 + ((index % 2) + 0.5) * MINI_DIAL_SIDE;
    return miniDial(instrument.needles[index], { number: index + 1, x, y: top + LINE / 2, title });
  });
}

function EngineClusterGauge({ instrument, values }: FaceProps): JSX.Element {
  const dials = useMemo(() => dialsOf(instrument), [instrument]);
  const fixed = useMemo(
    () => (
      <>
        <rect class="case" x={1} y={1} width={WIDTH - 2} height={HEIGHT - 2} rx={9} />
        {[0, 1, 2, 3].map((pair) => {
          const [x, y] = cornerOf(pair);
          return <rect class="face-plate" x={x} y={y} width={PAIR} height={LINE} rx={6} />;
        })}
        {dials.map((dial) => (
          <MiniDialPlate dial={dial} />
        ))}
      </>
    ),
    [dials],
  );
  return (
    <Layers
      label={`Engine cluster ${instrument.id}`}
      viewBox={`0 0 ${WIDTH} ${HEIGHT}`}
      fixed={fixed}
      moving={dials.map((dial, index) => (
        <MiniDialPointer dial={dial} steps={numberOf(values, DIALS[index]![0])} />
      ))}
    />
  );
}

export const engineClusterGaugeFace: Face = { component: EngineClusterGauge, size: () => "wide" };

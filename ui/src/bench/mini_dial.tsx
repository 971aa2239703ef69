// A small round dial of its own for one needle among many: 100 units wide, drawn around its centre.

import type { JSX } from "preact";

import { broken, Caption, printOf, type Print } from "./print";
import type { NeedlePrint } from "./protocol";
import { STEPS_PER_DEGREE, STEPS_PER_TURN, zeroDegrees, type Scale } from "./scale";
import { Hub, Needle, polar, ScaleMarks } from "./svg";

export const MINI_DIAL_SIDE = 100;

type Point = [x: number, y: number];

export interface MiniDial {
  number: number; // of the needle
  centre: Point;
  pivot: Point; // where the needle turns, from the centre
  caption: Point;
  markAt: Point;
  print: Print;
  zero: number; // degrees at which position 0 stands
  radius: number; // of the scale
  lines: string[];
  mark: string;
}

interface MiniDialAt {
  number: number;
  x: number;
  y: number;
  title?: string; // instead of the function's name
  mark?: string; // which engine or side
}

const SHORT_ARC_STEPS = (STEPS_PER_TURN * 5) / 12;
const EDGE = 43.5; // how far from the centre a scale may reach
const AWAY = 16; // how far the needle of a short arc turns from the centre
const LONGEST_RADIUS = 51;
const ROUND = { pivot: [0, 0] as Point, caption: [0, -15] as Point, markAt: [0, 19] as Point, radius: 42, lineLength: 9 };

/** A short arc lies along the edge, and its needle turns away from it, so that the arc gets more room. */
function placeOf(scale: Scale | undefined, zero: number): typeof ROUND {
  if (!scale || Math.abs(scale.last - scale.first) > SHORT_ARC_STEPS) return ROUND;
  const [x, y] = polar(zero + (scale.first + scale.last) / 2 / STEPS_PER_DEGREE, 1);
  // The ends of the arc lie on the edge.
  const half = Math.cos(((Math.abs(scale.last - scale.first) / STEPS_PER_DEGREE / 2) * Math.PI) / 180);
  const reach = AWAY * half + Math.sqrt((AWAY * half) ** 2 + EDGE ** 2 - AWAY ** 2);
  const beside = Math.abs(x) > 0.5;
  return {
    pivot: [-AWAY * x, -AWAY * y],
    caption: beside ? [-19 * x, -22] : [0, -28 * y],
    markAt: beside ? [-20 * x, 26] : [-30, -24 * y],
    radius: Math.min(reach, LONGEST_RADIUS),
    lineLength: 8,
  };
}

export function miniDial(needle: NeedlePrint | undefined, at: MiniDialAt): MiniDial {
  const print = printOf(needle);
  const zero = zeroDegrees(print.scale);
  const { lineLength, ...place } = placeOf(print.scale, zero);
  return {
    number: at.number,
    centre: [at.x, at.y],
    ...place,
    print,
    zero,
    lines: broken(at.title ?? print.title, lineLength),
    mark: at.mark ?? "",
  };
}

function moved([x, y]: Point): string {
  return `translate(${x.toFixed(2)} ${y.toFixed(2)})`;
}

export function MiniDialPlate({ dial }: { dial: MiniDial }): JSX.Element {
  const { print, zero, radius, lines, mark, caption, markAt } = dial;
  return (
    <g transform={moved(dial.centre)}>
      <circle class="bezel" r={48.5} />
      <circle class="dial" r={46} />
      {print.scale && (
        <g transform={moved(dial.pivot)}>
          <ScaleMarks scale={print.scale} zero={zero} radius={radius} labelSize={8} length={6} />
        </g>
      )}
      <Caption x={caption[0]} y={caption[1] - (lines.length - 1) * 4} size={6} lines={lines} unit={print.unit} />
      {mark !== "" && <Caption x={markAt[0]} y={markAt[1]} size={9} lines={[mark]} unit="" />}
      <circle class="rim" r={46} />
    </g>
  );
}

export function MiniDialPointer({ dial, steps }: { dial: MiniDial; steps: number }): JSX.Element {
  return (
    <g transform={moved(dial.centre)}>
      <g transform={moved(dial.pivot)}>
        <Needle
          degrees={dial.zero + steps / STEPS_PER_DEGREE}
          length={dial.radius - 3}
          tail={10}
          width={4.4}
          colour="white"
          number={dial.number}
          steps={steps}
        />
        <Hub radius={5} />
      </g>
    </g>
  );
}

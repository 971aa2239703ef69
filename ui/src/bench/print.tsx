// What is printed on dials, and the displays between.

import type { JSX } from "preact";

import type { NeedlePrint } from "./protocol";
import { printedTitle, scaleOf, unitOf, type Scale } from "./scale";

export interface Print {
  scale: Scale | undefined;
  title: string;
  unit: string;
}

export function printOf(needle: NeedlePrint | undefined): Print {
  const scale = needle && needle.title !== "" ? scaleOf(needle.points) : undefined;
  const title = needle ? printedTitle(needle.title) : "";
  const factor = scale && scale.factor > 1 ? `×${scale.factor}` : "";
  const unit = needle ? unitOf(needle.plate).toUpperCase() : "";
  // A unit that the title names already is not printed twice.
  const shown = title.split(" ").includes(unit) ? "" : unit;
  return { scale, title, unit: [factor, shown].filter((text) => text !== "").join(" ") };
}

/** Words in as few lines as their length allows. */
export function broken(title: string, longest: number): string[] {
  const lines: string[] = [];
  for (const word of title.split(" ")) {
    const last = lines[lines.length - 1];
    if (last !== undefined && last.length + 1 + word.length <= longest) {
      lines[lines.length - 1] = `${last} ${word}`;
    } else {
      lines.push(word);
    }
  }
  return lines;
}

interface CaptionProps {
  x: number;
  y: number;
  size: number;
  lines: string[];
  unit: string;
}

export function Caption({ x, y, size, lines, unit }: CaptionProps): JSX.Element {
  return (
    <g class="print">
      {lines.map((line, index) => (
        <text class="face-title" x={x} y={y + index * size * 1.12} font-size={size}>
          {line}
        </text>
      ))}
      <text class="face-unit" x={x} y={y + lines.length * size * 1.12} font-size={size * 0.82}>
        {unit}
      </text>
    </g>
  );
}

interface DisplayProps {
  x: number;
  y: number;
  scale?: number;
  text: string;
  ghost: string; // all segments of its places
  number?: number;
}

/** Lit places behind a window. */
export function Display({ x, y, scale = 1, text, ghost, number = 1 }: DisplayProps): JSX.Element {
  return (
    <g class="display" transform={`translate(${x} ${y}) scale(${scale})`}>
      <rect class="display-window" x={-29} y={-11.5} width={58} height={23} rx={3} />
      <text class="display-ghost" x={0} y={1}>
        {ghost}
      </text>
      <text class="display-text" x={0} y={1} data-display={number}>
        {text}
      </text>
    </g>
  );
}

// Parts that faces are drawn of. A dial is drawn in a square of 200 units around its centre.

import type { ComponentChildren, JSX } from "preact";

import { STEPS_PER_DEGREE, type Scale } from "./scale";

/** The point at an angle (degrees clockwise from the top) and a radius. */
export function polar(degrees: number, radius: number): [x: number, y: number] {
  const radians = (degrees * Math.PI) / 180;
  return [radius * Math.sin(radians), -radius * Math.cos(radians)];
}

function round(value: number): number {
  return Math.round(value * 100) / 100;
}

export function arcPath(from: number, to: number, radius: number): string {
  const [low, high] = from < to ? [from, to] : [to, from];
  const [x1, y1] = polar(low, radius);
  const [x2, y2] = polar(high, radius);
  const large = high - low > 180 ? 1 : 0;
  return `M ${round(x1)} ${round(y1)} A ${radius} ${radius} 0 ${large} 1 ${round(x2)} ${round(y2)}`;
}

interface MarkProps {
  degrees: number;
  from: number;
  to: number;
  width: number;
}

export function RadialMark({ degrees, from, to, width }: MarkProps): JSX.Element {
  const [x1, y1] = polar(degrees, from);
  const [x2, y2] = polar(degrees, to);
  return <line x1={round(x1)} y1={round(y1)} x2={round(x2)} y2={round(y2)} stroke-width={width} />;
}

interface ScaleMarksProps {
  scale: Scale;
  zero: number; // degrees of position 0
  radius: number; // outer end of the marks
  labelSize: number;
  length?: number; // of a major mark
}

const LABEL_GAP = 3;

/** The radius at which a label just clears the marks, whatever its width. */
function labelRadius(degrees: number, label: string, size: number, marksEnd: number): number {
  const radians = (degrees * Math.PI) / 180;
  const halfWidth = label.length * size * 0.3;
  const halfHeight = size * 0.37;
  return marksEnd - LABEL_GAP - Math.hypot(halfWidth * Math.sin(radians), halfHeight * Math.cos(radians));
}

export function ScaleMarks({ scale, zero, radius, labelSize, length = 12 }: ScaleMarksProps): JSX.Element {
  const degrees = (position: number) => zero + position / STEPS_PER_DEGREE;
  return (
    <g class="print">
      <path class="scale-arc" d={arcPath(degrees(scale.first), degrees(scale.last), radius)} />
      {scale.minors.map((position) => (
        <RadialMark degrees={degrees(position)} from={radius - length * 0.55} to={radius} width={1} />
      ))}
      {scale.majors.map((mark) => (
        <RadialMark degrees={degrees(mark.position)} from={radius - length} to={radius} width={2.2} />
      ))}
      {scale.majors.map((mark) => {
        const angle = degrees(mark.position);
        const [x, y] = polar(angle, labelRadius(angle, mark.label, labelSize, radius - length));
        return (
          <text class="scale-label" x={round(x)} y={round(y)} font-size={labelSize}>
            {mark.label}
          </text>
        );
      })}
    </g>
  );
}

interface NeedleProps {
  degrees: number;
  length: number;
  tail: number;
  width: number;
  colour: "white" | "yellow";
  number: number;
  steps: number;
}

/** A pointer around the origin. It glides from one telegram to the next. */
export function Needle({ degrees, length, tail, width, colour, number, steps }: NeedleProps): JSX.Element {
  const half = width / 2;
  const shape = `M ${-half} ${tail} L ${-half * 0.9} ${-length * 0.72} L 0 ${-length} L ${half * 0.9} ${-length * 0.72} L ${half} ${tail} Z`;
  return (
    <g
      class={`needle needle-${colour}`}
      data-needle={number}
      data-steps={steps}
      style={{ transform: `rotate(${round(degrees)}deg)` }}
    >
      <path class="needle-shadow" d={shape} transform="translate(1.5 2.5)" />
      <path class="needle-body" d={shape} />
    </g>
  );
}

export function Hub({ radius = 9 }: { radius?: number }): JSX.Element {
  return (
    <g>
      <circle class="hub" r={radius} />
      <circle class="hub-cap" r={radius * 0.42} />
    </g>
  );
}

function Screw({ x, y, turn }: { x: number; y: number; turn: number }): JSX.Element {
  return (
    <g transform={`translate(${x} ${y}) rotate(${turn})`}>
      <circle class="screw" r={5} />
      <line class="screw-slot" x1={-3.4} y1={0} x2={3.4} y2={0} />
      <line class="screw-slot" x1={0} y1={-3.4} x2={0} y2={3.4} />
    </g>
  );
}

/** The case of a round instrument and its dial; `children` is what is printed on it. */
export function RoundCase({ children }: { children: ComponentChildren }): JSX.Element {
  return (
    <>
      <path class="case" d="M -78 -98 H 78 L 98 -78 V 78 L 78 98 H -78 L -98 78 V -78 Z" />
      <Screw x={-85} y={-85} turn={20} />
      <Screw x={85} y={-85} turn={65} />
      <Screw x={-85} y={85} turn={-10} />
      <Screw x={85} y={85} turn={40} />
      <circle class="bezel" r={94} />
      <circle class="dial" r={88} />
      {children}
      <circle class="rim" r={88} />
    </>
  );
}

/** The glass over a round dial. */
export function Glass(): JSX.Element {
  return <path class="glass" d="M -70 -44 A 83 83 0 0 1 62 -55 A 120 120 0 0 0 -70 -44 Z" />;
}

interface LayersProps {
  label: string;
  viewBox?: string;
  fixed: ComponentChildren;
  moving: ComponentChildren;
}

/**
 * A drawing in two layers. What is printed keeps its picture, with all its glow, while what moves is drawn above it;
 * without this every turn of a needle would paint the whole instrument anew.
 */
export function Layers({ label, viewBox = "-100 -100 200 200", fixed, moving }: LayersProps): JSX.Element {
  return (
    <div class="layers" role="img" aria-label={label}>
      <svg class="layer-fixed" viewBox={viewBox} aria-hidden="true">
        {fixed}
      </svg>
      <svg class="layer-moving" viewBox={viewBox} aria-hidden="true">
        {moving}
      </svg>
    </div>
  );
}

// The plain needle gauges: one needle, one needle and a display, two needles side by side or on one axis.

import type { JSX } from "preact";
import { useMemo } from "preact/hooks";

import type { Instrument, NeedlePrint } from "../protocol";
import { printedTitle, scaleOf, STEPS_PER_DEGREE, unitOf, zeroDegrees, type Scale } from "../scale";
import { numberOf, textOf } from "../store";
import { Hub, Needle, RoundCase, ScaleMarks } from "../svg";
import type { Face, FaceProps } from "./face";

const WITH_DISPLAY = 2;
const SIDE_BY_SIDE = 3;
const CONCENTRIC = [5, 6];

interface Print {
  scale: Scale | undefined;
  title: string;
  unit: string;
}

function printOf(needle: NeedlePrint | undefined): Print {
  const scale = needle && needle.title !== "" ? scaleOf(needle.points) : undefined;
  const title = needle ? printedTitle(needle.title) : "";
  const factor = scale && scale.factor > 1 ? `×${scale.factor}` : "";
  const unit = needle ? unitOf(needle.plate).toUpperCase() : "";
  // A unit that the title names already is not printed twice.
  const shown = title.split(" ").includes(unit) ? "" : unit;
  return { scale, title, unit: [factor, shown].filter((text) => text !== "").join(" ") };
}

/** Words in as few lines as their length allows. */
function broken(title: string, longest: number): string[] {
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

function Caption({ x, y, size, lines, unit }: CaptionProps): JSX.Element {
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

/** Four places behind a window; the point stands between two of them. */
function Display({ text, dark }: { text: string; dark: boolean }): JSX.Element {
  return (
    <g class={dark ? "display display-dark" : "display"} transform="translate(0 31)">
      <rect class="display-window" x={-29} y={-11.5} width={58} height={23} rx={3} />
      <text class="display-ghost" x={0} y={1}>
        888.8
      </text>
      <text class="display-text" x={0} y={1} data-display>
        {text.trim()}
      </text>
    </g>
  );
}

function SingleNeedle({ instrument, values }: FaceProps): JSX.Element {
  const print = useMemo(() => printOf(instrument.needles[0]), [instrument]);
  const zero = zeroDegrees(print.scale);
  const steps = numberOf(values, "pointer1");
  const hasDisplay = instrument.type === WITH_DISPLAY;
  const sequence = instrument.needles[0]?.sequence ?? 1;
  const fixed = useMemo(
    () => (
      <>
        {print.scale && <ScaleMarks scale={print.scale} zero={zero} radius={82} labelSize={13} />}
        <Caption
          x={0}
          y={-30}
          size={9.5}
          lines={broken(print.title + (sequence > 1 ? ` ${sequence}` : ""), 13)}
          unit={print.unit}
        />
      </>
    ),
    [print, zero, sequence],
  );
  return (
    <>
      {fixed}
      {hasDisplay && <Display text={textOf(values, "display")} dark={values.power !== true} />}
      <Needle
        degrees={zero + steps / STEPS_PER_DEGREE}
        length={76}
        tail={20}
        width={6}
        colour="white"
        number={1}
        steps={steps}
      />
      <Hub />
    </>
  );
}

/** Whether the scales of two needles on one axis would be printed over each other. */
function overlap(one: Scale, two: Scale): boolean {
  const [low1, high1] = [Math.min(one.first, one.last), Math.max(one.first, one.last)];
  const [low2, high2] = [Math.min(two.first, two.last), Math.max(two.first, two.last)];
  return low1 < high2 && low2 < high1;
}

/** The middle of a scale, as a side of the dial: -1 left, 1 right. */
function sideOf(scale: Scale | undefined, zero: number): number {
  const middle = scale ? zero + (scale.first + scale.last) / 2 / STEPS_PER_DEGREE : 0;
  return Math.sin((middle * Math.PI) / 180) < 0 ? -1 : 1;
}

function Concentric({ instrument, values }: FaceProps): JSX.Element {
  const first = useMemo(() => printOf(instrument.needles[0]), [instrument]);
  const second = useMemo(() => printOf(instrument.needles[1]), [instrument]);
  const zero = zeroDegrees(first.scale);
  const inner = first.scale && second.scale ? overlap(first.scale, second.scale) : false;
  const steps1 = numberOf(values, "pointer1");
  const steps2 = numberOf(values, "pointer2");
  const fixed = useMemo(() => {
    const side1 = inner ? 0 : sideOf(first.scale, zero);
    return (
      <>
        {first.scale && <ScaleMarks scale={first.scale} zero={zero} radius={82} labelSize={inner ? 13 : 11.5} />}
        <g class="second-print">
          {second.scale && (
            <ScaleMarks
              scale={second.scale}
              zero={zero}
              radius={inner ? 50 : 82}
              labelSize={inner ? 8 : 11.5}
              length={inner ? 6 : 12}
            />
          )}
        </g>
        {!inner && <line class="divider" x1={0} y1={-84} x2={0} y2={-60} />}
        {!inner && <line class="divider" x1={0} y1={60} x2={0} y2={84} />}
        <CaptionPair first={first} second={second} side={side1} />
      </>
    );
  }, [first, second, zero, inner]);
  return (
    <>
      {fixed}
      <Needle
        degrees={zero + steps2 / STEPS_PER_DEGREE}
        length={inner ? 48 : 74}
        tail={18}
        width={inner ? 7 : 6}
        colour="yellow"
        number={2}
        steps={steps2}
      />
      <Needle degrees={zero + steps1 / STEPS_PER_DEGREE} length={76} tail={20} width={5.5} colour="white" number={1} steps={steps1} />
      <Hub />
    </>
  );
}

/** Titles of two scales: on their own sides, or one above the other when both go round. */
function CaptionPair({ first, second, side }: { first: Print; second: Print; side: number }): JSX.Element {
  if (side === 0) {
    return (
      <>
        <Caption x={0} y={-19} size={6.5} lines={[first.title]} unit={first.unit} />
        <g class="second-print">
          <Caption x={0} y={15} size={6.5} lines={[second.title]} unit={second.unit} />
        </g>
      </>
    );
  }
  return (
    <>
      <Caption x={side * 20} y={-25} size={6.5} lines={broken(first.title, 9)} unit={first.unit} />
      <g class="second-print">
        <Caption x={-side * 20} y={-25} size={6.5} lines={broken(second.title, 9)} unit={second.unit} />
      </g>
    </>
  );
}

function SideBySide({ instrument, values }: FaceProps): JSX.Element {
  const prints = useMemo(() => [printOf(instrument.needles[0]), printOf(instrument.needles[1])], [instrument]);
  const zero = 180;
  // Wide scales get small dials of their own, narrow ones lie along the edge of the common dial.
  const wide = prints.some((print) => print.scale && Math.abs(print.scale.last - print.scale.first) > 600);
  const pivot = wide ? 42 : 20;
  const radius = wide ? 38 : 61;
  const sameTitle = prints[0]!.title === prints[1]!.title;
  const fixed = useMemo(
    () => (
      <>
        {prints.map((print, index) => (
          <g transform={`translate(${index === 0 ? -pivot : pivot} 0)`}>
            {print.scale && (
              <ScaleMarks
                scale={print.scale}
                zero={zero}
                radius={radius}
                labelSize={wide ? 7 : 11}
                length={wide ? 6 : 10}
              />
            )}
          </g>
        ))}
        {sameTitle ? (
          <Caption x={0} y={-62} size={9} lines={broken(prints[0]!.title, 10)} unit={prints[0]!.unit} />
        ) : (
          prints.map((print, index) => (
            <Caption x={index === 0 ? -20 : 20} y={-68} size={7} lines={broken(print.title, 9)} unit={print.unit} />
          ))
        )}
        <Caption x={-pivot} y={60} size={11} lines={["L"]} unit="" />
        <Caption x={pivot} y={60} size={11} lines={["R"]} unit="" />
      </>
    ),
    [prints, pivot, radius, wide, sameTitle],
  );
  return (
    <>
      {fixed}
      {[1, 2].map((number) => {
        const steps = numberOf(values, `pointer${number}`);
        return (
          <g transform={`translate(${number === 1 ? -pivot : pivot} 0)`}>
            <Needle
              degrees={zero + steps / STEPS_PER_DEGREE}
              length={radius - 3}
              tail={12}
              width={5}
              colour="white"
              number={number}
              steps={steps}
            />
            <Hub radius={wide ? 5 : 8} />
          </g>
        );
      })}
    </>
  );
}

function NeedleGauge(props: FaceProps): JSX.Element {
  const { instrument } = props;
  const Dial = instrument.type === SIDE_BY_SIDE ? SideBySide : CONCENTRIC.includes(instrument.type) ? Concentric : SingleNeedle;
  const titles = instrument.needles.map((needle) => needle.title).filter((title) => title !== "");
  return (
    <svg viewBox="-100 -100 200 200" role="img" aria-label={`Gauge ${instrument.id}: ${titles.join(", ")}`}>
      <RoundCase>
        <Dial {...props} />
      </RoundCase>
    </svg>
  );
}

function sizeOf(instrument: Instrument): "small" | "large" {
  return instrument.type === 4 || instrument.type === 5 ? "large" : "small";
}

export const needleGaugeFace: Face = { component: NeedleGauge, size: sizeOf };

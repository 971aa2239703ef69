// The plain needle gauges: one needle, one needle and a display, two needles side by side or on one axis.

import type { JSX } from "preact";
import { useMemo } from "preact/hooks";

import { broken, Caption, Display, printOf, type Print } from "../print";
import type { Instrument, Values } from "../protocol";
import { STEPS_PER_DEGREE, zeroDegrees, type Scale } from "../scale";
import { numberOf, textOf } from "../store";
import { Glass, Hub, Layers, Needle, RoundCase, ScaleMarks } from "../svg";
import type { Face, FaceProps } from "./face";

const WITH_DISPLAY = 2;

// What is printed on a dial. It is worked out once for an instrument.
interface Printed {
  prints: [Print, Print];
  zero: number; // degrees at which the zero mark stands
  plate: JSX.Element;
}

interface Kind {
  printed(instrument: Instrument): Printed;
  pointers(printed: Printed, values: Values): JSX.Element;
}

function printsOf(instrument: Instrument): [Print, Print] {
  return [printOf(instrument.needles[0]), printOf(instrument.needles[1])];
}

const singleNeedle: Kind = {
  printed(instrument) {
    const prints = printsOf(instrument);
    const [print] = prints;
    const zero = zeroDegrees(print.scale);
    const sequence = instrument.needles[0]?.sequence ?? 1;
    const title = print.title + (sequence > 1 ? ` ${sequence}` : "");
    const plate = (
      <>
        {print.scale && <ScaleMarks scale={print.scale} zero={zero} radius={82} labelSize={13} />}
        <Caption x={0} y={-30} size={9.5} lines={broken(title, 13)} unit={print.unit} />
      </>
    );
    return { prints, zero, plate };
  },
  pointers({ zero }, values) {
    const steps = numberOf(values, "pointer1");
    const degrees = zero + steps / STEPS_PER_DEGREE;
    return (
      <>
        <Needle degrees={degrees} length={76} tail={20} width={6} colour="white" number={1} steps={steps} />
        <Hub />
      </>
    );
  },
};

/** Whether the scales of two needles on one axis would be printed over each other. */
function overlap([one, two]: [Print, Print]): boolean {
  if (!one.scale || !two.scale) return false;
  const low = (scale: Scale) => Math.min(scale.first, scale.last);
  const high = (scale: Scale) => Math.max(scale.first, scale.last);
  return low(one.scale) < high(two.scale) && low(two.scale) < high(one.scale);
}

/** The side of the dial on which a scale lies: -1 left, 1 right. */
function sideOf(scale: Scale | undefined, zero: number): number {
  const middle = scale ? zero + (scale.first + scale.last) / 2 / STEPS_PER_DEGREE : 0;
  return Math.sin((middle * Math.PI) / 180) < 0 ? -1 : 1;
}

/** Two scales that both go round: the second lies inside the first. */
function nestedPlate([first, second]: [Print, Print], zero: number): JSX.Element {
  return (
    <>
      {first.scale && <ScaleMarks scale={first.scale} zero={zero} radius={82} labelSize={13} />}
      <Caption x={0} y={-19} size={6.5} lines={[first.title]} unit={first.unit} />
      <g class="second-print">
        {second.scale && <ScaleMarks scale={second.scale} zero={zero} radius={50} labelSize={8} length={6} />}
        <Caption x={0} y={15} size={6.5} lines={[second.title]} unit={second.unit} />
      </g>
    </>
  );
}

/** Two scales with a side of the dial each. */
function halvesPlate([first, second]: [Print, Print], zero: number): JSX.Element {
  const side = sideOf(first.scale, zero);
  return (
    <>
      {first.scale && <ScaleMarks scale={first.scale} zero={zero} radius={82} labelSize={11.5} />}
      <Caption x={side * 20} y={-25} size={6.5} lines={broken(first.title, 9)} unit={first.unit} />
      <g class="second-print">
        {second.scale && <ScaleMarks scale={second.scale} zero={zero} radius={82} labelSize={11.5} />}
        <Caption x={-side * 20} y={-25} size={6.5} lines={broken(second.title, 9)} unit={second.unit} />
      </g>
      <line class="divider" x1={0} y1={-84} x2={0} y2={-60} />
      <line class="divider" x1={0} y1={60} x2={0} y2={84} />
    </>
  );
}

const concentric: Kind = {
  printed(instrument) {
    const prints = printsOf(instrument);
    const zero = zeroDegrees(prints[0].scale);
    return { prints, zero, plate: overlap(prints) ? nestedPlate(prints, zero) : halvesPlate(prints, zero) };
  },
  pointers({ prints, zero }, values) {
    const nested = overlap(prints);
    const [steps1, steps2] = [numberOf(values, "pointer1"), numberOf(values, "pointer2")];
    const degrees = (steps: number) => zero + steps / STEPS_PER_DEGREE;
    const [length2, width2] = nested ? [48, 7] : [74, 6];
    return (
      <>
        <Needle degrees={degrees(steps2)} length={length2} tail={18} width={width2} colour="yellow" number={2} steps={steps2} />
        <Needle degrees={degrees(steps1)} length={76} tail={20} width={5.5} colour="white" number={1} steps={steps1} />
        <Hub />
      </>
    );
  },
};

// Wide scales get small dials of their own, narrow ones lie along the edge of the common dial.
function sidesOf(prints: [Print, Print]): { wide: boolean; pivot: number; radius: number } {
  const wide = prints.some((print) => print.scale && Math.abs(print.scale.last - print.scale.first) > 600);
  return wide ? { wide, pivot: 42, radius: 38 } : { wide, pivot: 20, radius: 61 };
}

const sideBySide: Kind = {
  printed(instrument) {
    const prints = printsOf(instrument);
    const zero = 180;
    const { wide, pivot, radius } = sidesOf(prints);
    const [labelSize, length] = wide ? [7, 6] : [11, 10];
    const [first, second] = prints;
    const plate = (
      <>
        {prints.map(({ scale }, index) => (
          <g transform={`translate(${index === 0 ? -pivot : pivot} 0)`}>
            {scale && <ScaleMarks scale={scale} zero={zero} radius={radius} labelSize={labelSize} length={length} />}
          </g>
        ))}
        {first.title === second.title ? (
          <Caption x={0} y={-62} size={9} lines={broken(first.title, 10)} unit={first.unit} />
        ) : (
          prints.map((print, index) => (
            <Caption x={index === 0 ? -20 : 20} y={-68} size={7} lines={broken(print.title, 9)} unit={print.unit} />
          ))
        )}
        <Caption x={-pivot} y={60} size={11} lines={["L"]} unit="" />
        <Caption x={pivot} y={60} size={11} lines={["R"]} unit="" />
      </>
    );
    return { prints, zero, plate };
  },
  pointers({ prints, zero }, values) {
    const { wide, pivot, radius } = sidesOf(prints);
    const pointer = (number: number, x: number) => {
      const steps = numberOf(values, `pointer${number}`);
      const degrees = zero + steps / STEPS_PER_DEGREE;
      return (
        <g transform={`translate(${x} 0)`}>
          <Needle degrees={degrees} length={radius - 3} tail={12} width={5} colour="white" number={number} steps={steps} />
          <Hub radius={wide ? 5 : 8} />
        </g>
      );
    };
    return (
      <>
        {pointer(1, -pivot)}
        {pointer(2, pivot)}
      </>
    );
  },
};

const KINDS: Record<number, Kind> = { 3: sideBySide, 5: concentric, 6: concentric };

function NeedleGauge({ instrument, values }: FaceProps): JSX.Element {
  const kind = KINDS[instrument.type] ?? singleNeedle;
  const printed = useMemo(() => kind.printed(instrument), [kind, instrument]);
  const fixed = useMemo(() => <RoundCase>{printed.plate}</RoundCase>, [printed]);
  const titles = instrument.needles.map((needle) => needle.title).filter((title) => title !== "");
  return (
    <Layers
      label={`Gauge ${instrument.id}: ${titles.join(", ")}`}
      fixed={fixed}
      moving={
        <>
          {instrument.type === WITH_DISPLAY && <Display x={0} y={31} text={textOf(values, "display").trim()} ghost="888.8" />}
          {kind.pointers(printed, values)}
          <Glass />
        </>
      }
    />
  );
}

function sizeOf(instrument: Instrument): "small" | "large" {
  return instrument.type === 4 || instrument.type === 5 ? "large" : "small";
}

export const needleGaugeFace: Face = { component: NeedleGauge, size: sizeOf };

// How a plate is printed on a dial: which values get a label, and where the marks stand.

import type { ScalePoint } from "./protocol";

export const STEPS_PER_DEGREE = 3;
export const STEPS_PER_TURN = 1080;

export interface Mark {
  value: number;
  position: number;
  label: string;
}

export interface Scale {
  majors: Mark[];
  minors: number[]; // positions
  first: number; // position of the lowest value
  last: number; // position of the highest value
  factor: number; // labels are values divided by this
}

const FEWEST_PRINTED_POINTS = 4;
const MOST_MAJORS = 11;
const SMALLEST_MINOR_STEPS = 8;

/** The position of a value, between the points of the plate. */
export function positionOf(points: ScalePoint[], value: number): number {
  const first = points[0];
  const last = points[points.length - 1];
  if (!first || !last) return 0;
  if (value <= first[0]) return first[1];
  for (let next = 1; next < points.length; ++next) {
    const [lowValue, lowPosition] = points[next - 1]!;
    const [highValue, highPosition] = points[next]!;
    if (value <= highValue) {
      return lowPosition + ((highPosition - lowPosition) * (value - lowValue)) / (highValue - lowValue);
    }
  }
  return last[1];
}

function roundStep(rough: number): number {
  const power = 10 ** Math.floor(Math.log10(rough));
  const lead = rough / power;
  return (lead <= 1 ? 1 : lead <= 2 ? 2 : lead <= 5 ? 5 : 10) * power;
}

function isRound(step: number): boolean {
  const lead = step / 10 ** Math.floor(Math.log10(step) + 1e-9);
  return [1, 2, 2.5, 5].some((round) => Math.abs(lead - round) < 1e-6);
}

/** The labelled values: the plate's own points when it has enough of them, else round values between its ends. */
function majorValues(points: ScalePoint[]): number[] {
  if (points.length >= FEWEST_PRINTED_POINTS) return points.map(([value]) => value);
  const low = points[0]![0];
  const high = points[points.length - 1]![0];
  if (points.length > 2) return points.map(([value]) => value);
  const step = roundStep((high - low) / MOST_MAJORS);
  const values: number[] = [];
  for (let value = Math.ceil(low / step) * step; value <= high + step * 1e-6; value += step) values.push(value);
  return values;
}

function labelFactor(values: number[]): number {
  const largest = Math.max(...values.map(Math.abs));
  if (largest < 1000) return 1;
  if (values.every((value) => value % 1000 === 0)) return 1000;
  return values.every((value) => value % 100 === 0) ? 100 : 1;
}

function minorPositions(points: ScalePoint[], values: number[]): number[] {
  const positions: number[] = [];
  for (let next = 1; next < values.length; ++next) {
    const low = values[next - 1]!;
    const gap = values[next]! - low;
    const room = Math.abs(positionOf(points, values[next]!) - positionOf(points, low));
    const parts = [10, 5, 4, 2].find((count) => room / count >= SMALLEST_MINOR_STEPS && isRound(gap / count)) ?? 1;
    for (let part = 1; part < parts; ++part) positions.push(positionOf(points, low + (gap * part) / parts));
  }
  return positions;
}

/** Nothing for a plate without an extent. */
export function scaleOf(points: ScalePoint[]): Scale | undefined {
  const first = points[0];
  const last = points[points.length - 1];
  if (!first || !last || last[0] <= first[0]) return undefined;
  const values = majorValues(points);
  const factor = labelFactor(values);
  const majors: Mark[] = [];
  for (const value of values) {
    const position = positionOf(points, value);
    // On a full circle the last mark falls on the first.
    const taken = majors.some((mark) => Math.abs(Math.abs(mark.position - position) - STEPS_PER_TURN) < 12);
    const label = taken ? "" : String(Math.round((value / factor) * 100) / 100).replace("-", "−");
    majors.push({ value, position, label });
  }
  return { majors, minors: minorPositions(points, values), first: first[1], last: last[1], factor };
}

/** The unit, when the plate's name ends with one behind a number: "Airspeed 0-200 kt". */
export function unitOf(plate: string): string {
  const found = /\d\s*([A-Za-z%°/]{1,7})$/.exec(plate.trim());
  return found && found[1]!.toLowerCase() !== "hundred" ? found[1]! : "";
}

/** "OilTempF" as it is printed: "OIL TEMP F". */
export function printedTitle(title: string): string {
  return title
    .replace(/([a-z])([A-Z])/g, "$1 $2")
    .replace(/([A-Z])([A-Z][a-z])/g, "$1 $2")
    .toUpperCase();
}

/** Degrees clockwise from the top at which the zero mark of a dial with this scale stands. */
export function zeroDegrees(scale: Scale | undefined): number {
  const bottom = 180;
  if (!scale) return bottom;
  const span = Math.abs(scale.last - scale.first) / STEPS_PER_DEGREE;
  const middle = (scale.first + scale.last) / 2 / STEPS_PER_DEGREE;
  const lowest = scale.majors[0]!.value;
  const highest = scale.majors[scale.majors.length - 1]!.value;
  if (span >= 318 && lowest === -highest) return 270 - middle; // climb rate: zero at nine o'clock
  if (span >= 325) return 0; // airspeed, altitude: from the top all round
  if (span >= 240) return -middle; // a gap at the bottom
  return bottom; // half dials
}

// How the switches, LEDs and inputs of an IO module stand on its board.

export const GROUP_SIZE = 8;
export const SWITCH_GROUPS = 6;
export const LED_GROUPS = 4;
export const POTENTIOMETERS = 8;

const MOMENTARY = 1;
const ENCODER_A = 2;
const ENCODER_B = 3;

/** What stands at a place: a second place taken by an encoder has no cell of its own. */
export type CellKind = "lever" | "push" | "encoder" | "pair" | "none";

export interface Cell {
  number: number;
  kind: CellKind;
}

/** What is printed at a place: its group's letter and its number within the group. */
export function placeName(number: number): string {
  return `${groupName(Math.floor(number / GROUP_SIZE))}${(number % GROUP_SIZE) + 1}`;
}

export function groupName(group: number): string {
  return String.fromCharCode(65 + group);
}

/** A digit of a text of digits; 0 where there is none. */
export function digitAt(digits: string, index: number): number {
  const code = digits.charCodeAt(index) - 48;
  return code >= 0 && code <= 9 ? code : 0;
}

/** The cells of a group of switches. An encoder and its second track, the next number of its group, share one. */
export function switchCells(types: string, group: number): Cell[] {
  const first = group * GROUP_SIZE;
  const cells: Cell[] = [];
  for (let number = first; number < first + GROUP_SIZE; ++number) {
    const type = digitAt(types, number);
    if (type === ENCODER_A) {
      const paired = number + 1 < first + GROUP_SIZE && digitAt(types, number + 1) === ENCODER_B;
      cells.push({ number, kind: paired ? "pair" : "encoder" });
      if (paired) ++number;
    } else {
      cells.push({ number, kind: type === ENCODER_B ? "none" : type === MOMENTARY ? "push" : "lever" });
    }
  }
  return cells;
}

// The LEDs of an IO module and the row of the board that tells and sets what concerns the whole module.

import type { JSX } from "preact";

import { placeName } from "./board_layout";
import { Legend, spoken } from "./board_print";
import { turn, type Bench } from "./controls";
import { memo } from "./memo";

const MASTERS_OF_BITS = ["", "1", "2", "1 2"];

interface BoardLedProps {
  number: number;
  label: string;
  lit: boolean;
  masters: number;
}

/** A LED behind its legend; without one it is a small lamp. */
export const BoardLed = memo(function BoardLed({ number, label, lit, masters }: BoardLedProps): JSX.Element {
  const place = placeName(number);
  const bound = MASTERS_OF_BITS[masters] ?? "";
  return (
    <span
      class={label === "" ? "board-led spare" : "board-led"}
      role="img"
      aria-label={`LED ${place}, ${spoken(label)}: ${lit ? "lit" : "dark"}`}
      data-led={number}
      data-on={lit}
      title={bound === "" ? undefined : `${place}: shines while master ${bound.replace(" ", " or ")} is on`}
    >
      <span class="led-place">
        {place}
        {bound !== "" && <em>M {bound}</em>}
      </span>
      <Legend text={label} />
    </span>
  );
});

interface MasterSwitchProps {
  bench: Bench;
  number: number;
  on: boolean;
}

/** Lets those LEDs shine that are bound to it. */
export const MasterSwitch = memo(function MasterSwitch({ bench, number, on }: MasterSwitchProps): JSX.Element {
  return (
    <button
      type="button"
      role="switch"
      class="rocker"
      aria-checked={on}
      data-master={number}
      onClick={() => turn(bench, `master${number}`, on ? 0 : 1)}
    >
      Master {number}
    </button>
  );
});

interface ModuleNotesProps {
  testSwitch: number;
  debounce: number;
  clicks: number;
}

/** What is stored in the module, and what it has not yet reported. */
export const ModuleNotes = memo(function ModuleNotes({ testSwitch, debounce, clicks }: ModuleNotesProps): JSX.Element {
  return (
    <p class="board-notes">
      <span data-note="test">Test switch {testSwitch > 0 ? placeName(testSwitch - 1) : "none"}</span>
      <span data-note="debounce">Debounce {debounce} ms</span>
      <span data-note="clicks" data-waiting={clicks > 0}>
        {clicks === 1 ? "1 click waits" : `${clicks} clicks wait`}
      </span>
    </p>
  );
});

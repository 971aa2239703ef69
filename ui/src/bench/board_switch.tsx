// The switches of an IO module: levers, push buttons and encoders, each with the lamp that tells what the module reports.

import type { ComponentChildren, JSX } from "preact";
import { useRef } from "preact/hooks";

import { placeName, type CellKind } from "./board_layout";
import { Legend, spoken, SwitchLamp } from "./board_print";
import { Knob, turn, type Bench } from "./controls";
import { memo } from "./memo";

const SHORTEST_MOVE_MS = 60; // a finger is no faster, and the module's debouncing is to see it

interface ContactProps {
  bench: Bench;
  number: number;
  label: string;
  closed: boolean;
}

/** A lever that stays where it is put; upwards its contact is closed. */
function Lever({ bench, number, label, closed }: ContactProps): JSX.Element {
  return (
    <button
      type="button"
      role="switch"
      class="lever"
      aria-label={label}
      aria-checked={closed}
      data-contact={number}
      onClick={() => turn(bench, `switch${number}`, closed ? 0 : 1)}
    >
      <span class="lever-bat" />
    </button>
  );
}

/** Moves a contact as a hand does: every move lasts a while, and none is lost when they come faster. */
function useContact(move: (closed: boolean) => void): (closed: boolean) => void {
  const hand = useRef({ wanted: false, waiting: [] as boolean[], timer: 0 }).current;
  const next = () => {
    const closed = hand.waiting.shift();
    hand.timer = closed === undefined ? 0 : window.setTimeout(next, SHORTEST_MOVE_MS);
    if (closed !== undefined) move(closed);
  };
  return (closed) => {
    if (closed === hand.wanted) return;
    hand.wanted = closed;
    hand.waiting.push(closed);
    if (hand.timer === 0) next();
  };
}

/** A button whose contact is closed while it is held down, by finger or key. */
export function Push({ bench, number, label, closed, on }: ContactProps & { on: boolean }): JSX.Element {
  const contact = useContact((wanted) => turn(bench, `switch${number}`, wanted ? 1 : 0));
  const press = () => contact(true);
  const release = () => contact(false);
  const isPushKey = (event: KeyboardEvent) => event.key === " " || event.key === "Enter";
  return (
    <button
      type="button"
      class="push-cap"
      aria-label={label}
      aria-pressed={on}
      data-contact={number}
      data-closed={closed}
      data-on={on}
      onPointerDown={(event) => {
        if (event.button !== 0) return;
        event.currentTarget.setPointerCapture(event.pointerId);
        press();
      }}
      onPointerUp={release}
      onLostPointerCapture={release}
      onContextMenu={(event) => event.preventDefault()}
      onKeyDown={(event) => {
        if (!isPushKey(event)) return;
        event.preventDefault();
        press();
      }}
      onKeyUp={(event) => isPushKey(event) && release()}
      onBlur={release}
      onClick={(event) => {
        // Neither finger nor key: a screen reader's click.
        if (event.detail !== 0) return;
        press();
        release();
      }}
    />
  );
}

interface SwitchCellProps {
  bench: Bench;
  number: number;
  kind: CellKind;
  label: string;
  closed: boolean;
  on: boolean;
  /** Of an encoder's second track. */
  secondLabel: string;
  secondOn: boolean;
  /** The module lights all its LEDs with this switch. */
  test: boolean;
}

/** Legends and lamps of an encoder's two tracks stand on the sides to which it is turned for them. */
function PairLegends({ label, secondLabel }: Pick<SwitchCellProps, "label" | "secondLabel">): JSX.Element {
  if (label === secondLabel || label === "" || secondLabel === "") return <Legend text={label || secondLabel} />;
  return (
    <span class="pair-legends">
      <span>
        <i aria-hidden="true">↺</i>
        <Legend text={secondLabel} />
      </span>
      <span>
        <i aria-hidden="true">↻</i>
        <Legend text={label} />
      </span>
    </span>
  );
}

function controlOf({ bench, number, kind, label, closed, on, secondLabel }: SwitchCellProps): ComponentChildren {
  const place = placeName(number);
  const name = `Switch ${place}, ${spoken(label)}`;
  switch (kind) {
    case "lever":
      return <Lever bench={bench} number={number} label={name} closed={closed} />;
    case "push":
      return <Push bench={bench} number={number} label={name} closed={closed} on={on} />;
    case "encoder":
      return <Knob bench={bench} name={`encoder${number}`} label={`Encoder ${place}, ${spoken(label)}`} />;
    case "pair": {
      const second = secondLabel === "" || secondLabel === label ? "" : ` and ${spoken(secondLabel)}`;
      return <Knob bench={bench} name={`encoder${number}`} label={`Encoder ${place} ${placeName(number + 1)}, ${spoken(label)}${second}`} />;
    }
    case "none":
      return <span class="blank-plug" role="img" aria-label={`${place}, an encoder's second track alone`} />;
  }
}

/** One place of the board, two for an encoder. */
export const SwitchCell = memo(function SwitchCell(props: SwitchCellProps): JSX.Element {
  const { number, kind, label, on, secondLabel, secondOn, test } = props;
  const pair = kind === "pair";
  const spare = label === "" && secondLabel === "" && !test;
  return (
    <div class={`board-cell${pair ? " board-pair" : ""}${spare ? " spare" : ""}`} data-switch={number} data-kind={kind}>
      <span class="board-place">
        {pair && <SwitchLamp number={number + 1} on={secondOn} />}
        <span>{pair ? `${placeName(number + 1)} ${placeName(number)}` : placeName(number)}</span>
        <SwitchLamp number={number} on={on} />
      </span>
      <span class="board-control">{controlOf(props)}</span>
      {test ? <span class="legend legend-test">LED test</span> : pair ? <PairLegends label={label} secondLabel={secondLabel} /> : <Legend text={label} />}
    </div>
  );
});

// Knobs, buttons and switches of the simulated instruments. All work with mouse, wheel and keyboard, and say what they
// are and where they stand.

import type { JSX } from "preact";
import { useRef, useState } from "preact/hooks";

import type { FaceProps } from "./faces/face";

/** What a control needs of its face. */
export type Bench = Pick<FaceProps, "instrument" | "command">;

const FAST = 10;
const PIXELS_PER_CLICK = 7;
const DEGREES_PER_CLICK = 12;

export function turn({ instrument, command }: Bench, name: string, amount: number): void {
  command(`turn ${instrument.key} ${name} ${amount}`);
}

const CLICKS_OF_KEY: Record<string, number> = {
  ArrowUp: 1,
  ArrowRight: 1,
  ArrowDown: -1,
  ArrowLeft: -1,
  PageUp: FAST,
  PageDown: -FAST,
};

interface KnobProps {
  bench: Bench;
  name: string;
  label: string;
  /** What the knob sets, as a pilot would read it. */
  value?: string;
  kind?: "plain" | "outer" | "inner";
}

/** A knob that turns for ever. Drag it sideways or upwards, turn the wheel, click its left or right half, or use keys. */
export function Knob({ bench, name, label, value = "", kind = "plain" }: KnobProps): JSX.Element {
  const [turned, setTurned] = useState(0);
  const drag = useRef<{ x: number; y: number; clicks: number } | null>(null);
  const click = (amount: number) => {
    if (amount === 0) return;
    setTurned((before) => before + amount);
    turn(bench, name, amount);
  };
  return (
    <span
      class={`knob knob-${kind}`}
      role="slider"
      tabIndex={0}
      aria-label={label}
      aria-valuenow={turned}
      aria-valuetext={value === "" ? `turned by ${turned} clicks` : value}
      title={value === "" ? label : `${label}: ${value}`}
      data-knob={name}
      onKeyDown={(event) => {
        const clicks = CLICKS_OF_KEY[event.key];
        if (clicks === undefined) return;
        event.preventDefault();
        event.stopPropagation();
        click(event.shiftKey ? Math.sign(clicks) * FAST : clicks);
      }}
      onWheel={(event) => {
        event.preventDefault();
        event.stopPropagation();
        if (event.deltaY !== 0) click((event.deltaY < 0 ? 1 : -1) * (event.shiftKey ? FAST : 1));
      }}
      onPointerDown={(event) => {
        event.stopPropagation();
        if (event.button !== 0) return;
        event.currentTarget.setPointerCapture(event.pointerId);
        drag.current = { x: event.clientX, y: event.clientY, clicks: 0 };
      }}
      onPointerMove={(event) => {
        if (drag.current === null) return;
        const way = event.clientX - drag.current.x - (event.clientY - drag.current.y);
        const clicks = Math.trunc(way / PIXELS_PER_CLICK);
        click(clicks - drag.current.clicks);
        drag.current.clicks = clicks;
      }}
      onPointerCancel={() => (drag.current = null)}
      onPointerUp={(event) => {
        const held = drag.current;
        drag.current = null;
        if (held === null || held.clicks !== 0) return;
        const box = event.currentTarget.getBoundingClientRect();
        click(event.clientX < box.left + box.width / 2 ? -1 : 1);
      }}
    >
      <span class="knob-cap" style={{ transform: `rotate(${turned * DEGREES_PER_CLICK}deg)` }} />
    </span>
  );
}

interface DoubleKnobProps {
  bench: Bench;
  outer: { name: string; label: string };
  inner: { name: string; label: string };
  value?: string;
}

/** Two knobs on one shaft. */
export function DoubleKnob({ bench, outer, inner, value }: DoubleKnobProps): JSX.Element {
  return (
    <span class="double-knob">
      <Knob bench={bench} name={outer.name} label={outer.label} value={value} kind="outer" />
      <Knob bench={bench} name={inner.name} label={inner.label} value={value} kind="inner" />
    </span>
  );
}

interface PushButtonProps {
  bench: Bench;
  name: string;
  caption: string;
  label?: string;
  /** Its lamp; without one the button has none. */
  lit?: boolean;
}

export function PushButton({ bench, name, caption, label = caption, lit }: PushButtonProps): JSX.Element {
  return (
    <button
      type="button"
      class={lit === undefined ? "push" : "push push-lamp"}
      aria-label={label}
      aria-pressed={lit}
      data-button={name}
      data-on={lit}
      onClick={() => turn(bench, name, 1)}
    >
      {caption}
    </button>
  );
}

interface RotaryProps {
  bench: Bench;
  name: string;
  label: string;
  /** Captions of its positions, the first one of the number `first`. */
  positions: string[];
  first?: number;
  position: number;
}

/** A switch with a few positions; the one it stands on is marked. */
export function Rotary({ bench, name, label, positions, first = 1, position }: RotaryProps): JSX.Element {
  const last = first + positions.length - 1;
  const set = (wanted: number) => {
    const next = Math.min(last, Math.max(first, wanted));
    if (next !== position) turn(bench, name, next);
  };
  return (
    <span
      class="rotary"
      role="radiogroup"
      aria-label={label}
      data-rotary={name}
      onWheel={(event) => {
        event.preventDefault();
        if (event.deltaY !== 0) set(position + (event.deltaY < 0 ? 1 : -1));
      }}
    >
      {positions.map((caption, index) => {
        const here = first + index;
        const chosen = here === position;
        return (
          <button
            type="button"
            role="radio"
            key={here}
            aria-checked={chosen}
            tabIndex={chosen || (index === 0 && (position < first || position > last)) ? 0 : -1}
            class="rotary-position"
            data-position={here}
            onClick={() => set(here)}
            onKeyDown={(event) => {
              const clicks = CLICKS_OF_KEY[event.key];
              if (clicks === undefined) return;
              event.preventDefault();
              set(position + Math.sign(clicks));
              const group = event.currentTarget.parentElement;
              const next = Math.min(last, Math.max(first, position + Math.sign(clicks)));
              group?.querySelector<HTMLElement>(`[data-position="${next}"]`)?.focus();
            }}
          >
            {caption}
          </button>
        );
      })}
    </span>
  );
}

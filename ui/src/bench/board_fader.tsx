// Sliders of an IO module's board.

import type { JSX } from "preact";
import { useEffect, useRef, useState } from "preact/hooks";

import { Legend, spoken } from "./board_print";
import { turn, type Bench } from "./controls";
import { memo } from "./memo";

const SHORTEST_PAUSE_MS = 50; // between two commands of one slider
const OWN_VALUE_MS = 600; // so long the page believes its own hand and not the bench

/** Sends the first value at once and later ones at most twenty times a second, the last one always. */
function useSteadySender(send: (value: number) => void): (value: number) => void {
  const latest = useRef({ send, value: 0, sentAt: -Infinity, timer: 0 });
  latest.current.send = send;
  const state = latest.current;
  const flush = () => {
    state.timer = 0;
    state.sentAt = performance.now();
    state.send(state.value);
  };
  useEffect(
    () => () => {
      if (state.timer === 0) return;
      window.clearTimeout(state.timer);
      flush();
    },
    [],
  );
  return (value) => {
    state.value = value;
    if (state.timer !== 0) return;
    const pause = SHORTEST_PAUSE_MS - (performance.now() - state.sentAt);
    if (pause <= 0) flush();
    else state.timer = window.setTimeout(flush, pause);
  };
}

/** What a slider shows: its hand's value while it moves, then again the bench's. */
function useOwnValue(value: number): [shown: number, setOwn: (value: number) => void] {
  const [own, setOwn] = useState<number | null>(null);
  useEffect(() => {
    if (own === null) return undefined;
    const timer = window.setTimeout(() => setOwn(null), OWN_VALUE_MS);
    return () => window.clearTimeout(timer);
  }, [own]);
  return [own ?? value, setOwn];
}

interface FaderProps {
  bench: Bench;
  name: string;
  label: string;
  highest: number;
  value: number;
  /** Printed above it. */
  place: string;
  legend: string;
  lie: "upright" | "flat";
}

/** A slider with its value in figures. */
export const Fader = memo(function Fader({ bench, name, label, highest, value, place, legend, lie }: FaderProps): JSX.Element {
  const [shown, setOwn] = useOwnValue(value);
  const send = useSteadySender((wanted) => turn(bench, name, wanted));
  return (
    <label class={`fader fader-${lie}${lie === "upright" && legend === "" ? " spare" : ""}`}>
      <span class="board-place">{place}</span>
      <input
        type="range"
        min={0}
        max={highest}
        value={shown}
        aria-label={lie === "upright" ? `${label}, ${spoken(legend)}` : label}
        data-fader={name}
        onInput={(event) => {
          const wanted = Number(event.currentTarget.value);
          setOwn(wanted);
          send(wanted);
        }}
      />
      <span class="fader-value" data-fader-value={name}>
        {shown}
      </span>
      {lie === "upright" && <Legend text={legend} />}
    </label>
  );
});

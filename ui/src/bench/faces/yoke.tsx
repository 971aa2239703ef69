// A force feedback yoke: hands on its wheel, its switches, and what motors, positions and forces do.

import type { JSX } from "preact";
import { useEffect, useRef, useState } from "preact/hooks";

import { Push } from "../board_switch";
import { turn, type Bench } from "../controls";
import type { Values } from "../protocol";
import { flagOf, limitedOf, numberOf, textOf } from "../store";
import { AxisBars } from "../yoke_bars";
import { YokeHand } from "../yoke_hand";
import { HIGHEST_RAW, rawOf, shareOf, type Place } from "../yoke_travel";
import { ViewFromAbove, ViewFromSide } from "../yoke_views";
import type { Face, FaceProps } from "./face";

const TYPE_WITH_16_SWITCHES = 3;
const SWITCHES = 16;
const OLD_SWITCHES = 6;

// Permille of a hand's full force
const LIGHT_PUSH = 350;
const FULL_PUSH = 1000;

/** Pulling brings the raw values down. */
const KEYS: Record<string, { control: string; way: number }> = {
  ArrowLeft: { control: "pushRoll", way: -1 },
  ArrowRight: { control: "pushRoll", way: 1 },
  ArrowUp: { control: "pushPitch", way: 1 },
  ArrowDown: { control: "pushPitch", way: -1 },
};

function placeOf(values: Values, bank: string, pitch: string): Place {
  const share = (name: string) => (values[name] === undefined ? 0 : shareOf(limitedOf(values, name, 0, HIGHEST_RAW)));
  return { turn: share(bank), pull: -share(pitch) };
}

function useHand(bench: Bench): YokeHand {
  const kept = useRef<YokeHand | null>(null);
  const hand = (kept.current ??= new YokeHand(() => undefined));
  hand.say = (control, amount) => turn(bench, control, amount);
  useEffect(() => {
    const leave = () => hand.leave();
    window.addEventListener("pagehide", leave);
    return () => {
      window.removeEventListener("pagehide", leave);
      leave();
    };
  }, [hand]);
  return hand;
}

function Switches({ bench, values }: { bench: Bench; values: Values }): JSX.Element {
  const closed = textOf(values, "switches");
  const count = numberOf(values, "yokeType") === TYPE_WITH_16_SWITCHES ? SWITCHES : OLD_SWITCHES;
  return (
    <div class="yoke-switches" role="group" aria-label="Switches">
      {Array.from({ length: count }, (_, number) => {
        const on = closed[number] === "1";
        return (
          <span class="yoke-switch" key={number}>
            <Push bench={bench} number={number} label={`Switch ${number}`} closed={on} on={on} />
            <span aria-hidden="true">{number}</span>
          </span>
        );
      })}
    </div>
  );
}

function percent(share: number): string {
  return `${Math.round(share * 100)} %`;
}

function Yoke({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const hand = useHand(bench);
  const [drawn, setDrawn] = useState<Place | null>(null);
  const grab = useRef<Place>({ turn: 0, pull: 0 });
  const keys = useRef(new Set<string>());
  const at = placeOf(values, "bank", "pitch");
  const target = placeOf(values, "targetBank", "targetPitch");
  const standby = numberOf(values, "standby");
  const name = instrument.typeName.trim();

  const letGo = () => {
    keys.current.clear();
    setDrawn(null);
    hand.letGo();
  };
  const view = {
    at,
    target,
    drawn,
    onGrab: () => (grab.current = at),
    onDrag: (turned: number | null, pulled: number) => {
      const wanted = { turn: turned === null ? at.turn : grab.current.turn + turned, pull: grab.current.pull + pulled };
      setDrawn(wanted);
      if (turned !== null) hand.does("drawRoll", rawOf(wanted.turn));
      hand.does("drawPitch", rawOf(-wanted.pull));
    },
    onLetGo: letGo,
  };
  const onKey = (event: KeyboardEvent, down: boolean) => {
    const key = KEYS[event.key];
    if (key === undefined) return;
    event.preventDefault();
    if (down) keys.current.add(event.key);
    else if (!keys.current.delete(event.key)) return;
    hand.does(key.control, down ? key.way * (event.shiftKey ? FULL_PUSH : LIGHT_PUSH) : 0);
  };
  const bankText = `${name}: turned by ${percent(at.turn)}`;
  const pitchText = `pulled by ${percent(at.pull)}`;
  return (
    <section class="yoke" aria-label={`${name} on port ${instrument.port}`} data-held={flagOf(values, "held")}>
      <div class="yoke-plate">
        <div
          class="yoke-wheel-place"
          role="application"
          tabIndex={0}
          aria-label={`Hand on ${name}: left and right turn it, up pushes, down pulls, with Shift at full force`}
          title="Drag the wheel, or push it with the arrow keys"
          onKeyDown={(event) => onKey(event, true)}
          onKeyUp={(event) => onKey(event, false)}
          onBlur={() => keys.current.size > 0 && letGo()}
        >
          <ViewFromAbove {...view} label={`${bankText}, ${pitchText}`} />
        </div>
        <div class="yoke-beside">
          <ViewFromSide {...view} label={`${name} from the side: ${pitchText}`} />
          <Switches bench={bench} values={values} />
        </div>
        <AxisBars values={values} title="Ailerons" axis="Bank" />
        <AxisBars values={values} title="Elevator" axis="Pitch" />
        <p class="yoke-notes">
          <span data-note="held">{flagOf(values, "held") ? "A hand is on it" : "Nobody holds it"}</span>
          <span>{standby > 0 ? `Standby after ${standby} s` : "No standby time"}</span>
          <span>{numberOf(values, "yokeType") === TYPE_WITH_16_SWITCHES ? "16 switches" : "6 switches"}</span>
        </p>
      </div>
    </section>
  );
}

export const yokeFace: Face = { component: Yoke, size: () => "wide" };

// The figures of one axis of a yoke as bars.

import type { JSX } from "preact";

import type { Values } from "./protocol";
import { numberOf } from "./store";
import { CENTRE_RAW, FULL_FORCE, shareOf } from "./yoke_travel";

const FULL_SPRING = 1150;

interface BarProps {
  name: string;
  title: string;
  /** -1..1, or 0..1 where it begins at the left. */
  share: number;
  from: "centre" | "left";
  text: string;
  /** How far it may go to either side. */
  limit?: number;
}

function held(share: number): number {
  return Math.min(1, Math.max(-1, share));
}

function Bar({ name, title, share, from, text, limit }: BarProps): JSX.Element {
  const length = from === "centre" ? held(share) / 2 : held(share);
  const ends = limit === undefined ? [] : [-limit, limit];
  return (
    <div class="yoke-bar" role="meter" aria-label={title} aria-valuemin={from === "centre" ? -100 : 0} aria-valuemax={100} aria-valuenow={Math.round(share * 100)} aria-valuetext={text}>
      <span class="yoke-bar-title" aria-hidden="true">
        {title}
      </span>
      <span class="yoke-bar-track" data-from={from} aria-hidden="true">
        <i class={`yoke-bar-fill yoke-bar-${name}`} style={{ transform: `scaleX(${length.toFixed(4)})` }} />
        {ends.map((end) => (
          <i class="yoke-bar-limit" style={{ left: `${((held(end) + 1) * 50).toFixed(1)}%` }} />
        ))}
      </span>
      <span class="yoke-bar-text" data-bar={name}>
        {text}
      </span>
    </div>
  );
}

function percent(share: number): string {
  const whole = Math.round(share * 100);
  return `${whole === 0 ? 0 : whole} %`;
}

interface AxisProps {
  values: Values;
  title: string;
  /** As the yoke's values are called: "targetBank" and so on. */
  axis: "Bank" | "Pitch";
}

/** Target and position in units of the sensor; the motor's spring; and what hand and motor do to each other. */
export function AxisBars({ values, title, axis }: AxisProps): JSX.Element {
  const position = numberOf(values, axis.toLowerCase());
  const target = values[`target${axis}`] === undefined ? CENTRE_RAW : numberOf(values, `target${axis}`);
  const spring = numberOf(values, `force${axis}`) / FULL_SPRING;
  const felt = numberOf(values, `measured${axis}`) / FULL_FORCE;
  const motor = values[`motor${axis}`] === true;
  return (
    <section class="yoke-axis" aria-label={title}>
      <h3>
        {title}
        <span class="yoke-motor" role="img" aria-label={`Motor ${motor ? "on" : "off"}`} data-motor={axis} data-on={motor}>
          Motor
        </span>
      </h3>
      <Bar name={`target${axis}`} title="Target" share={shareOf(target)} from="centre" text={String(Math.round(target))} />
      <Bar name={`position${axis}`} title="Position" share={shareOf(position)} from="centre" text={String(Math.round(position))} />
      <Bar name={`spring${axis}`} title="Spring" share={spring} from="left" text={percent(spring)} />
      <Bar name={`force${axis}`} title="Force" share={felt} from="centre" text={percent(felt)} limit={numberOf(values, `max${axis}`) / FULL_FORCE} />
    </section>
  );
}

// A curve through eleven points whose handles are dragged: force in percent over airspeed in knots.
import type { JSX } from "preact";
import { useRef } from "preact/hooks";
import type { Act } from "./field";
import type { Control } from "./protocol";

// The coordinates that the program uses: airspeed to the right, force upwards.
const left = 800;
const right = 10800;
const top = 500;
const bottom = 5500;
const stepX = (right - left) / 100;
const stepY = (bottom - top) / 100;

// While a handle is dragged its places go out no faster than the program shows them.
const dragSendMs = 50;

interface Point {
  x: number;
  y: number;
}

interface Curve {
  maximum: number; // knots
  present: number;
  selected: number; // 0 = none
  points: Point[];
}

function read(text: string): Curve {
  const [maximum = 0, present = 0, selected = 0] = text.split(" ").map(Number);
  const points = text
    .split(" ")
    .slice(3)
    .map((pair) => pair.split(",").map(Number))
    .map(([x = 0, y = 0]) => ({ x, y }));
  return { maximum, present, selected, points };
}

const knots = (curve: Curve, x: number) => Math.round((curve.maximum * (x - left)) / (right - left));
const percent = (y: number) => Math.round(((bottom - y) / (bottom - top)) * 100);
const held = (value: number, lowest: number, highest: number) => Math.min(highest, Math.max(lowest, value));

function Grid({ curve }: { curve: Curve }) {
  const tenths = Array.from({ length: 11 }, (_, at) => at);
  return (
    <g class="curve-grid" aria-hidden="true">
      {tenths.map((at) => {
        const x = left + (at * (right - left)) / 10;
        const y = bottom - (at * (bottom - top)) / 10;
        return (
          <>
            <path d={`M${x} ${top}V${bottom}M${left} ${y}H${right}`} />
            <text x={x} y={bottom + 330} text-anchor="middle">
              {knots(curve, x)}
            </text>
            <text x={left - 120} y={y + 90} text-anchor="end">
              {at * 10}
            </text>
          </>
        );
      })}
      <text class="curve-unit" x={right} y={bottom + 680} text-anchor="end">
        knots
      </text>
      <text class="curve-unit" x={left - 120} y={top - 260} text-anchor="end">
        %
      </text>
    </g>
  );
}

export function ForceCurve({ control, act }: { control: Control; act: Act }): JSX.Element {
  const curve = read(control.text);
  const svg = useRef<SVGSVGElement>(null);
  const drag = useRef({ on: false, sent: 0 });
  const send = (text: string) => act(control, "change", { text });
  const place = (event: PointerEvent) => {
    const matrix = svg.current?.getScreenCTM();
    const at = matrix ? new DOMPoint(event.clientX, event.clientY).matrixTransform(matrix.inverse()) : { x: 0, y: 0 };
    return `${Math.round(held(at.x, left, right))} ${Math.round(held(at.y, top, bottom))}`;
  };
  // A handle is taken wherever the pointer meets it, however large it is drawn.
  const take = (event: PointerEvent, number: number) => {
    const point = curve.points[number];
    if (!point) {
      return;
    }
    event.preventDefault();
    svg.current?.setPointerCapture(event.pointerId);
    drag.current = { on: true, sent: 0 };
    send(`down ${Math.round(point.x)} ${Math.round(point.y)}`);
  };
  const move = (event: PointerEvent) => {
    if (drag.current.on && event.timeStamp - drag.current.sent >= dragSendMs) {
      drag.current.sent = event.timeStamp;
      send(`move ${place(event)}`);
    }
  };
  const release = (event: PointerEvent) => {
    if (drag.current.on) {
      drag.current.on = false;
      send(`move ${place(event)}`);
      send("up");
    }
  };
  const nudge = (event: KeyboardEvent, point: Point) => {
    const ways: Record<string, [number, number]> = {
      ArrowLeft: [-stepX, 0],
      ArrowRight: [stepX, 0],
      ArrowUp: [0, -stepY],
      ArrowDown: [0, stepY],
    };
    const way = ways[event.key];
    if (way) {
      event.preventDefault();
      send(`down ${Math.round(point.x)} ${Math.round(point.y)}`);
      send(`move ${held(point.x + way[0], left, right)} ${held(point.y + way[1], top, bottom)}`);
      send("up");
    }
  };
  const presentX = left + ((right - left) * held(curve.present, 0, curve.maximum)) / Math.max(curve.maximum, 1);
  return (
    <svg
      ref={svg}
      class="force-curve"
      viewBox="0 0 11200 6400"
      role="group"
      aria-label="Force over airspeed"
      onPointerMove={move}
      onPointerUp={release}
      onPointerCancel={release}
    >
      <Grid curve={curve} />
      <path class="curve-now" d={`M${presentX} ${top}V${bottom}`} />
      <text class="curve-now-text" x={presentX + 90} y={top + 260}>
        {curve.present} kt
      </text>
      <polyline class="curve-line" points={curve.points.map(({ x, y }) => `${x},${y}`).join(" ")} />
      {curve.points.map(
        (point, number) =>
          number > 0 && (
            <circle
              key={number}
              class={number === curve.selected ? "curve-handle curve-handle-taken" : "curve-handle"}
              cx={point.x}
              cy={point.y}
              r={130}
              tabindex={0}
              role="slider"
              aria-label={`Point ${number}`}
              aria-valuemin={0}
              aria-valuemax={100}
              aria-valuenow={percent(point.y)}
              aria-valuetext={`${knots(curve, point.x)} knots, ${percent(point.y)} percent`}
              data-handle={number}
              onPointerDown={(event) => take(event, number)}
              onKeyDown={(event) => nudge(event, point)}
            />
          ),
      )}
    </svg>
  );
}

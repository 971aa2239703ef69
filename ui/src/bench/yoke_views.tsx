// A yoke seen from above, as its pilot sees it, and from the side. Both can be taken hold of.

import type { ComponentChildren, JSX } from "preact";
import { useRef, useState } from "preact/hooks";

import { Layers } from "./svg";
import type { Place } from "./yoke_travel";

const TURN_DEGREES = 90; // at a stop
const TURN_UNITS = 90; // of the drawing, that the pointer goes for half the travel
const PULL_UNITS = 62;
const SIDE_UNITS = 64;
const PANEL = -98; // in the view from the side
const WHEEL_SINKS = 20;
const WHEEL_GROWS = 0.13;

interface HandleProps {
  children: ComponentChildren;
  class: string;
  /** Width of its drawing, in units. */
  units: number;
  onGrab(): void;
  /** By so many units of the drawing since it was taken. */
  onDrag(x: number, y: number): void;
  onLetGo(): void;
}

/** What a finger or the mouse takes hold of and draws. */
function Handle({ children, class: name, units, onGrab, onDrag, onLetGo }: HandleProps): JSX.Element {
  const grip = useRef<{ id: number; x: number; y: number } | null>(null);
  const [held, setHeld] = useState(false);
  const release = (event: PointerEvent) => {
    if (grip.current?.id !== event.pointerId) return;
    grip.current = null;
    setHeld(false);
    onLetGo();
  };
  return (
    <div
      class={`yoke-handle ${name}`}
      data-held={held}
      onPointerDown={(event) => {
        if (event.button !== 0 || grip.current !== null) return;
        event.currentTarget.setPointerCapture(event.pointerId);
        grip.current = { id: event.pointerId, x: event.clientX, y: event.clientY };
        setHeld(true);
        onGrab();
      }}
      onPointerMove={(event) => {
        const from = grip.current;
        if (from === null || from.id !== event.pointerId) return;
        const perPixel = units / event.currentTarget.getBoundingClientRect().width;
        onDrag((event.clientX - from.x) * perPixel, (event.clientY - from.y) * perPixel);
      }}
      onPointerUp={release}
      onPointerCancel={release}
      onLostPointerCapture={release}
      onContextMenu={(event) => event.preventDefault()}
    >
      {children}
    </div>
  );
}

interface SpringProps {
  from: [x: number, y: number];
  to: [x: number, y: number];
}

/** Between the yoke and the hand that draws it. */
function Spring({ from, to }: SpringProps): JSX.Element {
  return (
    <g class="yoke-spring">
      <line x1={from[0]} y1={from[1]} x2={to[0]} y2={to[1]} />
      <circle cx={to[0]} cy={to[1]} r={6} />
    </g>
  );
}

export interface ViewProps {
  label: string;
  at: Place;
  target: Place;
  /** Where the hand draws it, while it does. */
  drawn: Place | null;
  onGrab(): void;
  /** By shares of half the travel since it was taken; null for an axis that this view does not move. */
  onDrag(turn: number | null, pull: number): void;
  onLetGo(): void;
}

const WHEEL = "M -66 -44 C -82 -16 -78 26 -50 30 L -20 20 H 20 L 50 30 C 78 26 82 -16 66 -44";

function hubAt(place: Place): number {
  return place.pull * WHEEL_SINKS;
}

/** As the pilot sees it: the wheel turns, and comes nearer when it is pulled. */
export function ViewFromAbove({ label, at, target, drawn, onGrab, onDrag, onLetGo }: ViewProps): JSX.Element {
  const y = hubAt(at);
  const place = `translateY(${y.toFixed(2)}px) scale(${(1 + at.pull * WHEEL_GROWS).toFixed(4)}) rotate(${(at.turn * TURN_DEGREES).toFixed(2)}deg)`;
  return (
    <Handle class="yoke-above" units={240} onGrab={onGrab} onDrag={(dx, dy) => onDrag(dx / TURN_UNITS, dy / PULL_UNITS)} onLetGo={onLetGo}>
      <Layers
        label={label}
        viewBox="-120 -120 240 240"
        fixed={
          <>
            <rect class="case" x={-118} y={-118} width={236} height={236} rx={10} />
            <rect class="yoke-well" x={-30} y={-58} width={60} height={116} rx={30} />
            <g class="print">
              {[-90, -60, -30, 0, 30, 60, 90].map((degrees) => (
                <line key={degrees} transform={`rotate(${degrees})`} y1={-104} y2={degrees % 90 === 0 ? -94 : -98} stroke-width={degrees % 90 === 0 ? 2.4 : 1.4} />
              ))}
              <text class="scale-label" x={-90} y={104} font-size={9}>
                LEFT
              </text>
              <text class="scale-label" x={90} y={104} font-size={9}>
                RIGHT
              </text>
            </g>
          </>
        }
        moving={
          <>
            <path class="yoke-target" d="M 0 -93 L -5 -84 H 5 Z" style={{ transform: `rotate(${(target.turn * TURN_DEGREES).toFixed(2)}deg)` }} />
            <g class="yoke-wheel" data-view="above" style={{ transform: place }}>
              <path class="yoke-rim" d={WHEEL} />
              <path class="yoke-rim-light" d={WHEEL} />
              <path class="yoke-grip" d="M -66 -44 C -78 -22 -78 2 -70 18" />
              <path class="yoke-grip" d="M 66 -44 C 78 -22 78 2 70 18" />
              <path class="yoke-grip-light" d="M -66 -44 C -78 -22 -78 2 -70 18" />
              <path class="yoke-grip-light" d="M 66 -44 C 78 -22 78 2 70 18" />
              <rect class="yoke-hub" x={-26} y={-12} width={52} height={42} rx={9} />
              <path class="yoke-mark" d="M 0 -9 L -4 -2 H 4 Z" />
            </g>
            {drawn !== null && (
              <Spring from={[0, y]} to={[(drawn.turn - at.turn) * TURN_UNITS, y + (drawn.pull - at.pull) * PULL_UNITS]} />
            )}
          </>
        }
      />
    </Handle>
  );
}

/** From the left-hand side: the panel stands on the left, the pilot sits on the right. */
export function ViewFromSide({ label, at, target, drawn, onGrab, onDrag, onLetGo }: ViewProps): JSX.Element {
  const x = at.pull * SIDE_UNITS;
  const targetX = target.pull * SIDE_UNITS;
  return (
    <Handle class="yoke-side" units={240} onGrab={onGrab} onDrag={(dx) => onDrag(null, dx / SIDE_UNITS)} onLetGo={onLetGo}>
      <Layers
        label={label}
        viewBox="-120 -62 240 124"
        fixed={
          <>
            <rect class="case" x={-118} y={-60} width={236} height={120} rx={10} />
            <g class="print">
              <line x1={-SIDE_UNITS + 22} x2={SIDE_UNITS + 22} y1={42} y2={42} stroke-width={1.2} />
              {[-1, -0.5, 0, 0.5, 1].map((share) => (
                <line key={share} x1={share * SIDE_UNITS + 22} x2={share * SIDE_UNITS + 22} y1={share === 0 ? 36 : 38} y2={42} stroke-width={share === 0 ? 2.4 : 1.4} />
              ))}
              <text class="scale-label" x={-SIDE_UNITS + 22} y={51} font-size={9}>
                PUSH
              </text>
              <text class="scale-label" x={SIDE_UNITS + 22} y={51} font-size={9}>
                PULL
              </text>
            </g>
          </>
        }
        moving={
          <>
            <path class="yoke-target" d="M 22 36 L 17 27 H 27 Z" style={{ transform: `translateX(${targetX.toFixed(2)}px)` }} />
            <rect class="yoke-shaft" y={-8} width={1} height={13} style={{ transform: `translateX(${PANEL}px) scaleX(${(x + 10 - PANEL).toFixed(2)})` }} />
            <g class="yoke-wheel" data-view="side" style={{ transform: `translateX(${x.toFixed(2)}px)` }}>
              <rect class="yoke-hub" x={8} y={-15} width={18} height={27} rx={4} />
              <path class="yoke-rim-edge" d="M 20 -36 C 30 -18 29 2 22 22" />
            </g>
            <rect class="yoke-panel" x={PANEL - 16} y={-56} width={20} height={112} rx={4} />
            {drawn !== null && <Spring from={[x + 22, -1]} to={[drawn.pull * SIDE_UNITS + 22, -1]} />}
          </>
        }
      />
    </Handle>
  );
}

import type { JSX } from "preact";

import { CompassRose, Turn } from "../compass";
import { Knob } from "../controls";
import { RoundFace } from "../round_face";
import { numberOf } from "../store";
import type { Face, FaceProps } from "./face";

const AIRCRAFT = "M 0 -38 L 4 -26 V -10 L 34 4 V 11 L 4 4 V 24 L 13 31 V 36 L 0 32 L -13 36 V 31 L -4 24 V 4 L -34 11 V 4 L -4 -10 V -26 Z";
const LUBBER = <path class="lubber" d="M 0 -76 L -6 -90 H 6 Z" />;

function degreesText(degrees: number): string {
  return `${Math.round(degrees) % 360} degrees`;
}

function HeadingIndicator({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const card = numberOf(values, "card");
  const bug = numberOf(values, "bug");
  return (
    <RoundFace
      label={`Heading indicator, id ${instrument.id}`}
      corners={{
        "bottom-left": (
          <Knob bench={bench} name="heading" label="Heading card" value={`${numberOf(values, "drift").toFixed(0)} degrees of drift`} />
        ),
        "bottom-right": <Knob bench={bench} name="bug" label="Heading bug" value={degreesText(bug)} />,
      }}
    >
      <Turn degrees={-card} name="card">
        <CompassRose radius={84} labelSize={15} />
        <g transform={`rotate(${bug % 360})`} data-bug={Math.round(bug)}>
          <path class="bug" d="M -9 -87 H 9 V -79 H 4 L 0 -84 L -4 -79 H -9 Z" />
        </g>
      </Turn>
      <path class="symbol" d={AIRCRAFT} style={{ strokeWidth: 2 }} />
      {LUBBER}
    </RoundFace>
  );
}

export const headingIndicatorFace: Face = { component: HeadingIndicator, size: () => "small" };

import type { JSX } from "preact";

import { CompassRose, Turn } from "../compass";
import { Knob } from "../controls";
import { RoundFace } from "../round_face";
import { numberOf } from "../store";
import { Hub } from "../svg";
import type { Face, FaceProps } from "./face";

const NEEDLE = "M 0 -76 L 7 -60 H 2.6 V 60 L 8 74 H -8 L -2.6 60 V -60 H -7 Z";

function AdfIndicator({ instrument, values, command }: FaceProps): JSX.Element {
  const card = numberOf(values, "card");
  return (
    <RoundFace
      label={`ADF indicator, id ${instrument.id}`}
      corners={{
        "bottom-left": <Knob bench={{ instrument, command }} name="card" label="Heading card" value={`${card} degrees`} />,
      }}
    >
      <Turn degrees={-card} name="card">
        <CompassRose radius={84} labelSize={15} />
      </Turn>
      <path class="lubber" d="M 0 -80 L -5 -92 H 5 Z" />
      <Turn degrees={numberOf(values, "needle")} name="needle">
        <path class="needle-yellow needle-body" d={NEEDLE} fill="#f6cf3c" />
      </Turn>
      <Hub />
    </RoundFace>
  );
}

export const adfIndicatorFace: Face = { component: AdfIndicator, size: () => "small" };

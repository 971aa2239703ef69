import type { JSX } from "preact";

import { PushButton, Rotary } from "../controls";
import { flagOf, numberOf, textOf } from "../store";
import { Row, Screen, Unit } from "../unit";
import type { Face, FaceProps } from "./face";
import { DigitKnobs } from "./transponder";

const POSITIONS = ["OFF", "STBY", "TST", "ON", "ALT"];

function BkTransponder({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const code = textOf(values, "code");
  return (
    <Unit label={`Transponder, id ${instrument.id}`} title="Transponder">
      <Row>
        <Screen name="flightLevel" caption="FL" text={textOf(values, "flightLevel")} ghost="888" size="big" />
        <Screen name="code" caption="Code" text={code} ghost="8888" size="big" />
        <DigitKnobs bench={bench} code={code} />
      </Row>
      <Row>
        <PushButton bench={bench} name="ident" caption="IDT" label="Ident" lit={flagOf(values, "ident")} />
        <PushButton bench={bench} name="vfr" caption="VFR" lit={flagOf(values, "vfr")} />
        <Rotary bench={bench} name="rotary" label="Mode switch" positions={POSITIONS} position={numberOf(values, "rotary")} />
      </Row>
    </Unit>
  );
}

export const bkTransponderFace: Face = { component: BkTransponder, size: () => "wide" };

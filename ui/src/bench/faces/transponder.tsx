import type { JSX } from "preact";

import { Knob, PushButton, Rotary, type Bench } from "../controls";
import { flagOf, numberOf, textOf } from "../store";
import { Row, Screen, Unit, UnitLamp } from "../unit";
import type { Face, FaceProps } from "./face";

const UNIT_OF_737 = 114;
const POSITIONS = ["OFF", "STBY", "ON", "4", "5"];

export function DigitKnobs({ bench, code }: { bench: Bench; code: string }): JSX.Element {
  return (
    <>
      {[1, 2, 3, 4].map((place) => (
        <Knob bench={bench} name={`digit${place}`} label={`Digit ${place} of the code`} value={code[place - 1] ?? ""} />
      ))}
    </>
  );
}

function Transponder({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const active = numberOf(values, "active") === 2 ? 2 : 1;
  const code = textOf(values, `code${active}`);
  const of737 = instrument.type === UNIT_OF_737;
  return (
    <Unit label={`Transponder, id ${instrument.id}`} title={of737 ? "ATC transponder" : "CTL30 transponder"}>
      <Row>
        <Screen name="code" caption={`Code ${active}`} text={code} ghost="8888" size="big" />
        <DigitKnobs bench={bench} code={code} />
        <PushButton bench={bench} name="ident" caption="IDENT" lit={flagOf(values, "ident")} />
        {of737 && <UnitLamp name="atc" caption="ATC" lit={flagOf(values, "atc")} colour="amber" />}
      </Row>
      <Row>
        <Rotary bench={bench} name="select" label="Active transponder" positions={["ATC 1", "ATC 2"]} position={active} />
        <Rotary bench={bench} name="rotary" label="Mode switch" positions={POSITIONS} position={numberOf(values, "rotary")} />
      </Row>
    </Unit>
  );
}

export const transponderFace: Face = { component: Transponder, size: () => "wide" };

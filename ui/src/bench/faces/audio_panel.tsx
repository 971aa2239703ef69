import type { JSX } from "preact";

import { PushButton, Rotary } from "../controls";
import { flagOf, numberOf } from "../store";
import { Row, Unit, UnitLamp } from "../unit";
import type { Face, FaceProps } from "./face";

const BUTTONS = ["com1", "com2", "nav1", "nav2", "mkr", "dme", "adf", "ics", "aux", "spkr"] as const;
const POSITIONS = ["COM3", "COM2", "COM1", "COM1/2", "COM2/1", "TEL"];

function AudioPanel({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  return (
    <Unit label={`Audio panel, id ${instrument.id}`} title="Audio">
      <Row>
        <UnitLamp name="outer" caption="O" lit={flagOf(values, "outer")} colour="blue" />
        <UnitLamp name="middle" caption="M" lit={flagOf(values, "middle")} colour="amber" />
        <UnitLamp name="inner" caption="I" lit={flagOf(values, "inner")} colour="white" />
        <Rotary bench={bench} name="rotary" label="Microphone" positions={POSITIONS} position={numberOf(values, "rotary")} />
      </Row>
      <Row>
        {BUTTONS.map((name) => (
          <PushButton bench={bench} name={name} caption={name.toUpperCase()} lit={flagOf(values, name)} />
        ))}
      </Row>
    </Unit>
  );
}

export const audioPanelFace: Face = { component: AudioPanel, size: () => "wide" };

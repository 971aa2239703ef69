import type { JSX } from "preact";

import { DoubleKnob, PushButton, Rotary } from "../controls";
import { numberOf, textOf } from "../store";
import { Row, Screen, Unit } from "../unit";
import type { Face, FaceProps } from "./face";

const WITH_ROTARY = 111;
const GHOST = "888.888";
const ROTARY_POSITIONS = ["1", "2", "3", "4", "5"];

function Radio({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const kind = textOf(values, "kind");
  const active = textOf(values, "active");
  return (
    <Unit label={`${kind} radio, id ${instrument.id}`} title={instrument.type === WITH_ROTARY ? `CTL30 ${kind}` : kind}>
      <Row>
        <Screen name="active" caption="Use" text={active} ghost={GHOST} size="big" />
        <PushButton bench={bench} name="swap" caption="⇄" label="Swap active and standby frequency" />
        <Screen name="standby" caption="Standby" text={textOf(values, "standby")} ghost={GHOST} size="big" />
        <DoubleKnob
          bench={bench}
          outer={{ name: "coarse", label: "Standby frequency, coarse" }}
          inner={{ name: "fine", label: "Standby frequency, fine" }}
          value={textOf(values, "standby")}
        />
      </Row>
      {instrument.type === WITH_ROTARY && (
        <Row>
          <Rotary bench={bench} name="rotary" label="Function switch" positions={ROTARY_POSITIONS} position={numberOf(values, "rotary")} />
        </Row>
      )}
    </Unit>
  );
}

export const radioFace: Face = { component: Radio, size: () => "wide" };

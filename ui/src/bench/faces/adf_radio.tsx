import type { JSX } from "preact";

import { DoubleKnob, PushButton } from "../controls";
import { flagOf, textOf } from "../store";
import { Row, Screen, Unit, UnitLamp } from "../unit";
import type { Face, FaceProps } from "./face";

const GHOST = "8888.8";

function AdfRadio({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const power = flagOf(values, "power");
  const adf = flagOf(values, "adfMode");
  return (
    <Unit label={`ADF radio, id ${instrument.id}`} title="ADF">
      <Row>
        <Screen name="active" caption="Use" text={textOf(values, "active")} ghost={GHOST} size="big" />
        <PushButton bench={bench} name="swap" caption="⇄" label="Swap active and standby frequency" />
        <Screen name="standby" caption="Standby" text={textOf(values, "standby")} ghost={GHOST} size="big" />
        <DoubleKnob
          bench={bench}
          outer={{ name: "coarse", label: "Standby frequency, coarse" }}
          inner={{ name: "fine", label: "Standby frequency, fine" }}
          value={textOf(values, "standby")}
        />
      </Row>
      <Row>
        <UnitLamp name="ant" caption="ANT" lit={power && !adf} colour="amber" />
        <UnitLamp name="adf" caption="ADF" lit={power && adf} colour="amber" />
        <UnitLamp name="bfo" caption="BFO" lit={power && flagOf(values, "bfo")} colour="amber" />
        <PushButton bench={bench} name="mode" caption="ADF" label="Antenna or ADF" />
        <PushButton bench={bench} name="bfo" caption="BFO" />
      </Row>
    </Unit>
  );
}

export const adfRadioFace: Face = { component: AdfRadio, size: () => "wide" };

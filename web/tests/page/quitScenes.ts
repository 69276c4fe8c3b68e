// What the page says while Quorin ends, over each kind of view.

import type { FakePanel } from './FakePanel';
import { model, settings, success } from './samples';
import type { Scene } from './scenes';

export async function quits(panel: FakePanel, left: Record<string, number> = {}): Promise<void> {
  await panel.send('quitting', { cells: 12, names: 0, rows: 3, columns: 1, ...left });
  await panel.page.getByText('Quorin is quitting.').waitFor();
}

/** What is said over a scene. */
function over(scene: Scene, left: Record<string, number> = {}): Scene {
  return {
    ...scene,
    then: async (panel) => {
      await scene.then?.(panel);
      await quits(panel, left);
    },
  };
}

const tree: Scene = { answers: model, state: 'ready', then: (panel) => panel.verified('same') };

export const quitScenes: Record<string, Scene> = {
  quitting: over(tree),
  quittingOverKeys: over(
    {
      ...tree,
      then: async (panel) => {
        await panel.verified('same');
        await panel.page.getByTestId('help-button').click();
      },
    },
    { cells: 1_048_576, names: 2, rows: 200, columns: 200 },
  ),
  quittingOverSettings: over(
    {
      answers: { ...model, getSettings: success(settings({ summonKey: [8, 4096] })) },
      state: 'ready',
      then: async (panel) => {
        await panel.page.getByTestId('gear').click();
        await panel.page.getByTestId('settings-file').waitFor();
      },
    },
    { rows: 0, columns: 0 },
  ),
};

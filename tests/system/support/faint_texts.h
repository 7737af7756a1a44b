#pragma once

namespace support {

/// An expression: the texts whose colour is too near to what is behind: less than 4.5 to 1, one a
/// line.
inline constexpr const char* faint_texts = R"js((() => {
        const canvas = document.createElement('canvas').getContext('2d', {willReadFrequently: true});
        const rgb = (colour) => { canvas.clearRect(0, 0, 1, 1); canvas.fillStyle = colour;
            canvas.fillRect(0, 0, 1, 1); return canvas.getImageData(0, 0, 1, 1).data; };
        const light = ([r, g, b]) => [r, g, b].map((each) => each / 255).map((each) =>
            each <= 0.04045 ? each / 12.92 : ((each + 0.055) / 1.055) ** 2.4)
            .reduce((sum, each, index) => sum + each * [0.2126, 0.7152, 0.0722][index], 0);
        const behind = (node) => { for (let each = node; each; each = each.parentElement) {
            const colour = rgb(getComputedStyle(each).backgroundColor);
            if (colour[3] > 200) return colour; } return [255, 255, 255]; };
        return [...document.querySelectorAll('h2, h3, p, span, .chip, button, label')]
            .filter((node) => node.checkVisibility() && node.textContent.trim() &&
                node.children.length === 0)
            .filter((node) => { const [a, b] = [light(rgb(getComputedStyle(node).color)),
                light(behind(node))].sort((x, y) => y - x);
                return (a + 0.05) / (b + 0.05) < 4.5; })
            .map((node) => node.className + ': ' + node.textContent).join('\n');
    })())js";

}  // namespace support
